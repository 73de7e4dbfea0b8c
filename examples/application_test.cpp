// An application's test against a virtual camera. Usage: with_bus.sh application_test
#include <kelva/Camera.h>
#include <kelva/VirtualBus.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace {

// What is tested: the bytes of all pictures together.
std::size_t SizeOfAll(Camera& camera) {
  std::size_t size = 0;
  for (const DcfObj& picture : camera.GetDcf()) size += camera.ReadFile(picture, 1, nullptr, nullptr, true).size();
  return size;
}

void Require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

}  // namespace

int main(int, char** argv) {
  const std::string bus = argv[1];
  const auto vcam = [&bus](const std::string& verb, const std::string& words) {
    Require(std::system(("kelva-vcam " + verb + " --virtual " + bus + " " + words).c_str()) == 0, verb.c_str());
  };
  try {
    const std::filesystem::path card = bus + ".card";
    std::filesystem::create_directories(card / "DCIM/100ABCDE");
    std::ofstream(card / "DCIM/100ABCDE/IMG_0001.JPG") << std::string(100'000, 'x');
    vcam("plug", "--serial TEST-1 --storage " + card.string());

    kelva::UseVirtualBus(bus);  // before the first look for cameras
    const boost::shared_ptr<Camera> camera = Camera::GetCamera("TEST-1", "", false, false);
    Require(camera->Open() && SizeOfAll(*camera) == 100'000, "The picture has 100,000 bytes.");

    vcam("fault", "TEST-1 unplug 70000");  // in the middle of the next picture
    bool failed = false;
    try {
      SizeOfAll(*camera);
    } catch (const CameraTransferError&) {
      failed = true;
    }
    Require(failed, "A camera that is unplugged fails.");
    std::cout << "All is well.\n";
  } catch (const std::exception& error) {
    std::cerr << "Failed: " << error.what() << "\n";
    return 1;
  }
}

// Reads all pictures of a camera. When it is unplugged in the middle, waits for it and goes on with what is missing.
#include <kelva/EventLoop.h>
#include <kelva/Listener.h>

#include <iostream>
#include <set>
#include <utility>

namespace {

using namespace std::chrono_literals;

boost::shared_ptr<Camera> attached;  // the camera in use, one at a time
std::set<std::pair<int, int>> done;  // folder and number of each picture that was read

void ReadWhatIsMissing(Camera& camera) {
  if (!camera.Open()) throw CameraTransferError("The camera does not open.");
  for (const DcfObj& picture : camera.GetDcf()) {
    const std::pair<int, int> name(picture.directoryNumber, picture.fileNumber);
    if (picture.hasJpg == 0 || done.contains(name)) continue;
    camera.ReadFile(picture, 1, nullptr, nullptr, true);
    done.insert(name);
  }
}

// A failed transfer does not say why it failed. The report of a loss may come a moment later.
bool WasUnplugged() {
  for (int i = 0; i < 20 && attached != nullptr; ++i) kelva::RunEvents(100ms);
  return attached == nullptr;
}

}  // namespace

int main() {
  const kelva::Listener listener({
      .attached = [](auto camera, auto&) { attached = camera; },
      .lost = [](auto, auto&) { attached.reset(); },
      .badCamera = {},
  });
  for (;;) {
    while (attached == nullptr) kelva::RunEvents(1s);
    try {
      const boost::shared_ptr<Camera> camera = attached;  // for as long as a command runs
      ReadWhatIsMissing(*camera);
      std::cout << "Pictures read: " << done.size() << std::endl;
      return 0;
    } catch (const CameraTransferError& error) {
      if (!WasUnplugged()) {
        std::cerr << error.what() << "\n";
        return 1;
      }
      std::cout << "Unplugged; plug it in again. Pictures read: " << done.size() << std::endl;
    }
  }
}

// Fetches the newest picture of the first camera into newest.jpg. Ctrl-C stops it between two pieces of the picture.
#include <kelva/Camera.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <tuple>

namespace {

volatile std::sig_atomic_t stopped = 0;

// Called before each 256 KiB; an exception ends the transfer, and the camera takes the next command.
void ShowProgress(void*, float fraction) {
  std::cerr << static_cast<int>(fraction * 100) << " %\n";
  if (stopped != 0) throw std::runtime_error("Stopped.");
}

// The catalogue has no times. Cameras count upwards, so the newest picture has the highest numbers.
bool IsOlder(const DcfObj& one, const DcfObj& other) {
  return std::tie(one.directoryNumber, one.fileNumber) < std::tie(other.directoryNumber, other.fileNumber);
}

void FetchNewest(Camera& camera) {
  if (!camera.Open()) throw std::runtime_error("Another program uses the camera.");
  std::vector<DcfObj> pictures = camera.GetDcf();
  std::erase_if(pictures, [](const DcfObj& picture) { return picture.hasJpg == 0; });
  if (pictures.empty()) throw std::runtime_error("The camera has no JPEG picture.");
  const DcfObj newest = *std::max_element(pictures.begin(), pictures.end(), IsOlder);
  const std::vector<char> jpeg = camera.ReadFile(newest, 1, ShowProgress, nullptr, true);
  // A name of our own: what the camera calls its pictures is not a path to trust.
  std::ofstream file("newest.jpg", std::ios::binary);
  if (!file.write(jpeg.data(), static_cast<std::streamsize>(jpeg.size())).flush()) {
    throw std::runtime_error("newest.jpg cannot be written.");
  }
  std::cout << "Picture " << newest.directoryNumber << "-" << newest.fileNumber << ", " << jpeg.size() << " bytes.\n";
}

}  // namespace

int main() {
  std::signal(SIGINT, [](int) { stopped = 1; });
  try {
    const std::vector<boost::shared_ptr<Camera>> cameras = Camera::EnumerateCameras(false, "", false, 0);
    if (cameras.empty()) throw std::runtime_error("No camera is attached.");
    FetchNewest(*cameras.front());
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
}

// Counts the pictures of the first camera, and prints each exchange with it: the command, how it ended, how long it took.
#include <kelva/Camera.h>
#include <kelva/Traced.h>

#include <iomanip>
#include <iostream>

namespace {

// Called inside each command, when its exchange is over.
void Print(const kelva::Exchange& exchange) {
  std::cerr << std::hex << std::setfill('0');
  for (const int byte : exchange.block.bytes) std::cerr << std::setw(2) << byte;
  std::cerr << std::dec << " " << exchange.asked << " -> " << exchange.moved << " bytes, "
            << exchange.took.count() / 1000 << " us"
            << (exchange.result == kelva::Exchange::Result::kDone ? "" : ", failed") << "\n";
}

}  // namespace

int main() {
  try {
    const std::vector<boost::shared_ptr<Camera>> cameras = Camera::EnumerateCameras(false, "", false, 0);
    if (cameras.empty()) throw std::runtime_error("No camera is attached.");
    const boost::shared_ptr<Camera> camera = kelva::Traced(cameras.front(), {.ended = Print, .began = {}});
    if (!camera->Open()) throw std::runtime_error("Another program uses the camera.");
    std::cout << "Pictures: " << camera->GetDcf().size() << "\n";
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
}

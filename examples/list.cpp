// Lists the cameras that are attached.
#include <kelva/Camera.h>
#include <kelva/CameraSource.h>

#include <iostream>

int main() {
  try {
    const std::vector<boost::shared_ptr<Camera>> cameras = Camera::EnumerateCameras(false, "", false, 0);
    if (cameras.empty()) std::cout << "No camera is attached. " << kelva::LastSourceError() << "\n";
    for (const boost::shared_ptr<Camera>& camera : cameras) {
      if (!camera->Open()) {
        std::cout << "A camera that another program uses.\n";
        continue;
      }
      std::cout << "A camera. Pictures: " << camera->GetDcf().size() << "\n";
    }
  } catch (const CameraError& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
}

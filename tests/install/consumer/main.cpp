// A program of someone else's: lists this machine's cameras, or with a path those of a bus of virtual cameras.
#include <kelva/Camera.h>
#include <kelva/CameraSource.h>
#include <kelva/VirtualBus.h>

#include <exception>
#include <iostream>

int main(int argc, char** argv) {
  try {
    if (argc > 1) kelva::UseVirtualBus(argv[1]);
    Camera::ListenForCameraAttach([](boost::shared_ptr<Camera>, void*) {}, nullptr, false);
    for (const auto& camera : Camera::EnumerateCameras(false, "", false, 0)) {
      std::cout << "found " << camera->Name() << ", which " << (camera->Open() ? "opens" : "does not open") << "\n";
    }
    std::cout << "source: " << kelva::LastSourceError() << "\n";
  } catch (const std::exception& error) {
    std::cout << "error: " << error.what() << "\n";
    return 1;
  }
  return 0;
}

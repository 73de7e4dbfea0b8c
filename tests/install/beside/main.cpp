// Uses a camera of a bus beside another part of the same application, which has names of the library for other things.
// Usage: beside BUS
#include <kelva/Camera.h>
#include <kelva/VirtualBus.h>

#include <exception>
#include <iostream>

int DrawScene();

namespace {

bool NobodyIsNotFound() {
  try {
    Camera::GetCamera("nobody", "", false, false);
  } catch (const std::exception& error) {
    return std::string(error.what()) == "Camera error: Camera not found.";
  }
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  // Only named, so that it is in the program: the copy of its own CoreFoundation ends a process that calls it.
  if (argc != 2) return DrawScene();
  kelva::UseVirtualBus(argv[1]);
  Camera::ListenForCameraAttach([](boost::shared_ptr<Camera>, void*) {}, nullptr, false);
  for (const auto& camera : Camera::EnumerateCameras(false, "", false, 0)) {
    std::cout << camera->Name() << (camera->Open() ? " opens" : " does not open") << ", "
              << (camera->IsReady() ? "is ready" : "is not ready") << "\n";
  }
  std::cout << (NobodyIsNotFound() ? "nobody is not found" : "nobody is found") << "\n";
  return 0;
}

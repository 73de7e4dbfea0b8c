// Embeds the installed library on Linux: lists this machine's cameras, then one that the program itself plugs in.
#include <kelva/Camera.h>
#include <kelva/OsxCamera.h>
#include <kelva/darwin/udev/UdevSource.h>
#include <kelva/darwin/virtual/VirtualRegistry.h>

#include <iostream>

int main() {
  darwin::Registry::Shared().SetSource(darwin::MakeUdevSource());
  const auto cameras = Camera::EnumerateCameras(false, "", false, 0);
  std::cout << "cameras of this machine: " << cameras.size() << "\n";

  darwin::VirtualRegistry registry;
  registry.AttachCamera({"KV-0001", "Kelva", "Camera", "1.00", 3, nullptr});
  const auto camera = Camera::GetCamera("KV-0001", "", false, false);
  std::cout << "found " << camera->Name() << ", which " << (camera->Open() ? "opens" : "does not open") << "\n";
  return 0;
}

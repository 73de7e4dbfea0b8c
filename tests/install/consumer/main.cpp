// Embeds the installed library: lists the cameras in sight, and names a picture as the camera does.
#include <kelva/Camera.h>
#include <kelva/OsxCamera.h>

#include <cstring>
#include <iostream>

int main() {
  const auto cameras = Camera::EnumerateCameras(false, "", false, 0);
  for (const auto& camera : cameras) {
    std::cout << camera->Name() << "\n";
  }
  DcfObj picture{};
  std::strcpy(picture.filePrefix, "IMG_");
  picture.fileNumber = 7;
  std::cout << "a picture is called " << Camera::DcfFilename(picture, 1) << "\n";
  return 0;
}

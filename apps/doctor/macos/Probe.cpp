// Asks one camera one short question through its driver.

#include "apps/doctor/macos/Probe.h"

#include "src/usb/osx/OsxCamera.h"
#include "src/wifi/CameraError.h"

namespace apps::doctor::macos {

Answer AskCamera(io_service_t service) {
  IOObjectRetain(service);
  OsxCamera camera(service);
  if (!camera.Open()) return Answer::kRefused;
  try {
    camera.IsReady();
    return Answer::kAnswers;
  } catch (const CameraError&) {
    return Answer::kFails;
  }
}

}  // namespace apps::doctor::macos

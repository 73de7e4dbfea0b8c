// Judges what the I/O registry shows: why each camera does not work, and what mends it on a Mac.

#include "apps/doctor/macos/Diagnosis.h"

#include <utility>

#include "wire/RegistryNames.h"

namespace apps::doctor::macos {
namespace {

Finding AboutCamera(const CameraFacts& camera, Condition condition, std::string sentence, std::string advice,
                    std::string command = "") {
  return {condition, camera.serial, std::move(sentence), std::move(command), std::move(advice)};
}

Finding NotSetUp(const CameraFacts& camera) {
  return AboutCamera(camera, Condition::kNotSetUp, "The camera is on the bus, but it has not answered the system yet.",
                     "Wait two seconds and ask again; then unplug the camera, switch it off and on, and plug it in.");
}

Finding BadCamera(const CameraFacts& camera) {
  return AboutCamera(camera, Condition::kBadCamera,
                     std::string("The camera presents itself as a CD drive (revision ") + wire::kBadCameraRevision +
                         ") and takes no commands.",
                     "Eject it in the Finder; then unplug the camera, switch it off and on, and plug it in again.");
}

Finding NoDriver(const CameraFacts& camera) {
  return AboutCamera(
      camera, Condition::kDriverNotLoaded,
      "The camera is there, but its driver has not taken it: the driver is not installed or not allowed.",
      "Install the camera's driver, a kernel extension, allow it in System Settings under Privacy & "
      "Security, and restart. A Mac with Apple silicon takes kernel extensions only with Reduced Security, "
      "which Startup Security Utility sets in macOS Recovery. `kmutil showloaded` lists those that are "
      "loaded.");
}

Finding NoVendor(const CameraFacts& camera) {
  return AboutCamera(camera, Condition::kNoVendor,
                     "The camera's driver does not show \"" + std::string(wire::kVendorName) + "\" = \"" +
                         wire::kVendor +
                         "\" on its own entry, so `kelva list` and all commands miss the camera, although the launcher "
                         "agent works.",
                     "Install another version of the driver. `ioreg -r -l -c " + camera.driver +
                         "` shows what the driver's entry has; send it to the driver's maker.");
}

Finding Held(const CameraFacts& camera) {
  return AboutCamera(camera, Condition::kHeld, "The camera is held by " + InWords(camera.holders) + ".",
                     "Better let it finish, or close it the usual way.",
                     "kill " + std::to_string(camera.holders.front().pid));
}

Finding NotAnswering(const CameraFacts& camera) {
  const bool refused = camera.answer == Answer::kRefused;
  return AboutCamera(camera, Condition::kNotAnswering,
                     refused ? "The camera's driver begins no session with it."
                             : "The camera does not answer, or answers with an error.",
                     "Unplug it, switch it off and on, and plug it in again; then try another cable or port.");
}

// In the order from the cable to the program: after the first obstacle, later checks would only show it again.
Finding DiagnoseCamera(const CameraFacts& camera) {
  if (!camera.isSetUp) return NotSetUp(camera);
  if (camera.isDisc) return BadCamera(camera);
  if (camera.driver.empty()) return NoDriver(camera);
  if (!camera.namesVendor) return NoVendor(camera);
  if (!camera.holders.empty()) return Held(camera);
  if (camera.answer == Answer::kRefused || camera.answer == Answer::kFails) return NotAnswering(camera);
  return AboutCamera(camera, Condition::kWell, "The camera is ready to be used.", "");
}

Finding NoDevice() {
  return {
      Condition::kNoDevice, "", "No camera is attached to this machine.", "",
      "Switch the camera on, and try another cable or port: the system knows no USB device of this maker. A Mac laptop "
      "with Apple silicon (macOS 13 and later) hides a new accessory until its user allows it, and while the screen is "
      "locked: unlock the screen, plug the camera in, and click Allow. System Settings has the rule under Privacy & "
      "Security, Allow accessories to connect."};
}

}  // namespace

std::vector<Finding> Diagnose(const std::vector<CameraFacts>& cameras) {
  std::vector<Finding> findings;
  findings.reserve(cameras.size() + 1);
  for (const CameraFacts& camera : cameras) findings.push_back(DiagnoseCamera(camera));
  if (findings.empty()) findings.push_back(NoDevice());
  return findings;
}

}  // namespace apps::doctor::macos

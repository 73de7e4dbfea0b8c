// Judges what the survey found: why each camera does not work, and the command that mends it.

#include "apps/doctor/linux/Diagnosis.h"

#include <cerrno>
#include <cstring>

#include "wire/RegistryNames.h"

namespace apps::doctor {
namespace {

constexpr int kSectorsOfAChunk = 128;  // 65,536 bytes, the chunk of every bulk transfer

Finding AboutCamera(const CameraFacts& camera, Condition condition, std::string sentence, std::string command = "",
                    std::string advice = "") {
  return {condition, camera.serial, std::move(sentence), std::move(command), std::move(advice)};
}

/// The command that does what unplugging and plugging in do; empty for a unit that is not attached by USB.
std::string PlugAgain(const CameraFacts& camera) {
  if (camera.usbPath.empty()) return "";
  const std::string file = camera.usbPath + "/authorized";
  return "echo 0 | sudo tee " + file + " && echo 1 | sudo tee " + file;
}

Finding DriverNotLoaded(const CameraFacts& camera) {
  return AboutCamera(camera, Condition::kDriverNotLoaded,
                     "The camera is on the bus, but no kernel driver has taken it.", "sudo modprobe usb-storage");
}

Finding NotSetUp(const CameraFacts& camera) {
  return AboutCamera(camera, Condition::kNotSetUp,
                     "The kernel's driver has the camera, but the camera has not answered it yet.", "",
                     "Wait two seconds and ask again; then unplug the camera, switch it off and on, and plug it in.");
}

Finding BadCamera(const CameraFacts& camera) {
  return AboutCamera(camera, Condition::kBadCamera,
                     std::string("The camera presents itself as a CD drive (revision ") + wire::kBadCameraRevision +
                         ") and takes no commands.",
                     camera.disc.empty() ? "" : "sudo eject " + camera.disc,
                     "Then unplug the camera, switch it off and on, and plug it in again.");
}

Finding NoGenericDriver(const CameraFacts& camera) {
  return AboutCamera(camera, Condition::kNoGenericDriver,
                     "The camera has no generic node, because the kernel's sg driver is not loaded.",
                     "sudo modprobe sg");
}

Finding NoNode(const CameraFacts& camera) {
  const std::string numbers = std::to_string(camera.major) + " " + std::to_string(camera.minor);
  return AboutCamera(camera, Condition::kNoNode,
                     "The kernel has the camera as " + camera.node + ", but that node does not exist here.",
                     "sudo mknod -m 0666 " + camera.node + " c " + numbers,
                     "In a container, start it with --device=" + camera.node + " instead.");
}

Finding NoPermission(const CameraFacts& camera, const MachineFacts& facts) {
  Finding finding =
      AboutCamera(camera, Condition::kNoPermission,
                  "This user may not read and write " + camera.node + " (" + std::strerror(camera.nodeError) + ").");
  if (facts.rulesFile.empty()) {
    finding.command = "sudo setfacl -m u:" + facts.user + ":rw " + camera.node;
    finding.advice = "That lasts until the camera is unplugged; the udev rule of the kelva package is permanent.";
  } else if (!facts.userInPlugdev) {
    finding.command = "sudo usermod -aG plugdev " + facts.user;
    finding.advice = "Log out and in again afterwards. At the machine's own screen no group is needed.";
  } else {
    finding.command = "sudo udevadm control --reload && sudo udevadm trigger --action=change " + camera.node;
  }
  return finding;
}

Finding Held(const CameraFacts& camera) {
  return AboutCamera(camera, Condition::kHeld, "The camera is held by " + InWords(camera.holders) + ".",
                     "kill " + std::to_string(camera.holders.front().pid),
                     "Better let it finish, or close it the usual way.");
}

Finding NotAnswering(const CameraFacts& camera) {
  const bool silent = camera.answer == Answer::kSilent;
  return AboutCamera(camera, Condition::kNotAnswering,
                     silent ? "The camera does not answer." : "The camera answers every question with an error.",
                     PlugAgain(camera),
                     "If that does not help, unplug it, switch it off and on, and plug it in again; then try another "
                     "cable or port.");
}

Finding Narrow(const CameraFacts& camera) {
  return AboutCamera(camera, Condition::kNarrow,
                     "The kernel carries only " + std::to_string(*camera.maxSectors * 512) +
                         " bytes in one command for this camera, and the camera's chunks are 65536.",
                     "echo " + std::to_string(kSectorsOfAChunk) + " | sudo tee " + camera.unitPath + "/max_sectors",
                     "The udev rule of the kelva package does this at every plug.");
}

// In the order from the cable to the program: after the first obstacle, later checks would only show it again.
Finding DiagnoseUnit(const CameraFacts& camera, const MachineFacts& facts) {
  if (wire::IsBadCamera(camera.peripheralType, camera.revision)) return BadCamera(camera);
  if (camera.node.empty()) return NoGenericDriver(camera);
  if (camera.nodeError == ENOENT) return NoNode(camera);
  if (camera.nodeError != 0) return NoPermission(camera, facts);
  if (!camera.holders.empty()) return Held(camera);
  if (camera.answer == Answer::kSilent || camera.answer == Answer::kFails) return NotAnswering(camera);
  if (camera.maxSectors.value_or(kSectorsOfAChunk) < kSectorsOfAChunk) return Narrow(camera);
  return AboutCamera(camera, Condition::kWell, "The camera at " + camera.node + " is ready to be used.");
}

Finding DiagnoseCamera(const CameraFacts& camera, const MachineFacts& facts) {
  if (!camera.unitPath.empty()) return DiagnoseUnit(camera, facts);
  return camera.driverBound ? NotSetUp(camera) : DriverNotLoaded(camera);
}

Finding NoDevice() {
  return {Condition::kNoDevice, "", "No camera is attached to this machine.", "",
          "Switch the camera on, and try another cable or port: the kernel sees no USB device of this maker. "
          "`journalctl -k -f` shows what it says while you plug in."};
}

Finding NoUdev() {
  return {Condition::kNoUdev, "", "udev does not run here, so cameras that are plugged in later go unnoticed.",
          "sudo systemctl start systemd-udevd",
          "In a container, run the tool on the host, or share the host's /run/udev and network."};
}

}  // namespace

std::vector<Finding> Diagnose(const MachineFacts& facts) {
  std::vector<Finding> findings;
  for (const CameraFacts& camera : facts.cameras) findings.push_back(DiagnoseCamera(camera, facts));
  if (findings.empty()) findings.push_back(NoDevice());
  if (!facts.udevRuns) findings.push_back(NoUdev());
  return findings;
}

}  // namespace apps::doctor

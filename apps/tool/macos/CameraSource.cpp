// On macOS the system's frameworks find the cameras of this machine, and nothing has to be chosen.
#include "apps/tool/CameraSource.h"

#include "apps/commandline/Failure.h"
#include "apps/doctor/Machine.h"

namespace apps {

void ChooseCameraSource(const std::optional<std::string>& socket, const std::function<void(const std::string&)>&) {
  // The frameworks cannot be told of a bus; kelva-virtual has the command before it comes here (HandOver.h).
  if (socket) throw Failure(ExitCode::kFailed, "This program knows the cameras of this machine alone.");
}

std::string HoldersInWords(const std::optional<std::string>&, const std::string& serial) {
  return doctor::InWords(doctor::HoldersOfCamera(serial));
}

std::vector<doctor::Finding> ObstaclesToCameras(const std::optional<std::string>&) {
  return doctor::Obstacles(doctor::LookAtMachine());
}

// A camera has no node. All users can open this folder, and nothing is written there.
std::optional<LinePlace> LineOf(const std::optional<std::string>&, const std::string& serial) {
  return LinePlace{"/tmp", serial};
}

}  // namespace apps

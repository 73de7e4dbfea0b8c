// The one place that chooses between this machine and a virtual bus.
#include "apps/tool/CameraSource.h"

#include <stdexcept>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/doctor/Machine.h"
#include "apps/doctor/linux/Survey.h"
#include "apps/tool/BusCameras.h"
#include "darwin/registry/Registry.h"
#include "darwin/udev/UdevSource.h"

namespace apps {

void ChooseCameraSource(const std::optional<std::string>& socket, const std::function<void(const std::string&)>& note) {
  if (socket) return UseBus(*socket);
  try {
    darwin::Registry::Shared().SetSource(darwin::MakeUdevSource(note));
  } catch (const std::runtime_error& error) {
    throw Failure(ExitCode::kFailed, Printable(error.what()));
  }
}

std::string HoldersInWords(const std::optional<std::string>& socket, const std::string& serial) {
  return doctor::InWords(socket ? HoldersOnBus(*socket, serial) : doctor::HoldersOfCamera(serial));
}

std::vector<doctor::Finding> ObstaclesToCameras(const std::optional<std::string>& socket) {
  return socket ? ObstaclesOnBus(*socket) : doctor::Obstacles(doctor::LookAtMachine());
}

std::optional<LinePlace> LineOf(const std::optional<std::string>& socket, const std::string& serial) {
  if (socket) return LineOnBus(*socket, serial);
  const std::string node = doctor::NodeOfCamera(serial);
  if (node.empty()) return std::nullopt;
  return LinePlace{node, serial};
}

}  // namespace apps

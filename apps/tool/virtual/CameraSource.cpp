// In kelva-virtual: a virtual bus, and no cameras of this machine.
#include "apps/tool/CameraSource.h"

#include "apps/commandline/Failure.h"
#include "apps/tool/BusCameras.h"

namespace apps {

void ChooseCameraSource(const std::optional<std::string>& socket, const std::function<void(const std::string&)>&) {
  if (socket) return UseBus(*socket);
  throw Failure(ExitCode::kUsage,
                "kelva-virtual knows virtual cameras alone; `kelva` finds the cameras of this machine.");
}

std::string HoldersInWords(const std::optional<std::string>& socket, const std::string& serial) {
  return socket ? doctor::InWords(HoldersOnBus(*socket, serial)) : "";
}

std::vector<doctor::Finding> ObstaclesToCameras(const std::optional<std::string>& socket) {
  return socket ? ObstaclesOnBus(*socket) : std::vector<doctor::Finding>();
}

std::optional<LinePlace> LineOf(const std::optional<std::string>& socket, const std::string& serial) {
  if (!socket) return std::nullopt;
  return LineOnBus(*socket, serial);
}

}  // namespace apps

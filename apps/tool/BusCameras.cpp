// A virtual bus as the source of cameras.
#include "apps/tool/BusCameras.h"

#include <filesystem>
#include <stdexcept>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "bus/BusClient.h"
#include "bus/BusConnection.h"
#include "darwin/registry/Registry.h"
#include "platform/Process.h"
#include "wire/RegistryNames.h"

namespace apps {

void UseBus(const std::string& socket) {
  if (socket.empty()) throw Failure(ExitCode::kUsage, "--virtual needs the path of a virtual bus's socket.");
  try {
    darwin::Registry::Shared().SetSource(bus::ConnectBus(socket));
  } catch (const std::runtime_error& error) {
    throw Failure(ExitCode::kFailed, Printable(error.what()));
  }
}

// On macOS `kelva` becomes kelva-virtual for a virtual bus; people have started the first.
std::string ToolName(const std::string& process) {
  constexpr std::string_view kEnd = "-virtual";
  return process.ends_with(kEnd) ? process.substr(0, process.size() - kEnd.size()) : process;
}

// Uses a connection of its own, because the source's connection belongs to the registry. Empty where nobody serves the bus.
std::vector<bus::CameraStatus> CamerasOnBus(const std::string& socket) {
  try {
    bus::BusConnection bus(socket);
    const auto cameras = bus::Decode<std::vector<bus::CameraStatus>>(bus.Request(bus::Kind::kStatus, {}).payload);
    return cameras.value_or(std::vector<bus::CameraStatus>());
  } catch (const std::runtime_error&) {
    return {};
  }
}

std::vector<doctor::Holder> HoldersOnBus(const std::string& socket, const std::string& serial) {
  std::vector<doctor::Holder> holders;
  for (const bus::CameraStatus& camera : CamerasOnBus(socket)) {
    const int pid = static_cast<int>(camera.holder);
    if (camera.serial == serial && pid != 0) holders.push_back({pid, ToolName(platform::ProcessName(pid))});
  }
  return holders;
}

std::vector<doctor::Finding> ObstaclesOnBus(const std::string& socket) {
  std::vector<doctor::Finding> findings;
  for (const bus::CameraStatus& camera : CamerasOnBus(socket)) {
    if (!wire::IsBadCamera(camera.peripheralType, camera.revision)) continue;
    findings.push_back({doctor::Condition::kBadCamera, camera.serial,
                        "A virtual camera is of the kind that is taken for a CD drive.", "",
                        "Unplug it, and plug it in without --type 5."});
  }
  return findings;
}

// A socket cannot be opened; its folder can.
LinePlace LineOnBus(const std::string& socket, const std::string& serial) {
  const std::filesystem::path path(socket);
  const std::string folder = path.parent_path().string();
  return {folder.empty() ? "." : folder, path.filename().string() + '/' + serial};
}

}  // namespace apps

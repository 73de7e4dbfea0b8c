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

// Uses a connection of its own, because the source's connection belongs to the registry.
std::vector<doctor::Holder> HoldersOnBus(const std::string& socket, const std::string& serial) {
  std::vector<doctor::Holder> holders;
  try {
    bus::BusConnection bus(socket);
    const auto cameras = bus::Decode<std::vector<bus::CameraStatus>>(bus.Request(bus::Kind::kStatus, {}).payload);
    for (const bus::CameraStatus& camera : cameras.value_or(std::vector<bus::CameraStatus>())) {
      const int pid = static_cast<int>(camera.holder);
      if (camera.serial == serial && pid != 0) holders.push_back({pid, ToolName(platform::ProcessName(pid))});
    }
  } catch (const std::runtime_error&) {
    // Optional: the message is complete without the holder's name.
  }
  return holders;
}

// A socket cannot be opened; its folder can.
LinePlace LineOnBus(const std::string& socket, const std::string& serial) {
  const std::filesystem::path path(socket);
  const std::string folder = path.parent_path().string();
  return {folder.empty() ? "." : folder, path.filename().string() + '/' + serial};
}

}  // namespace apps

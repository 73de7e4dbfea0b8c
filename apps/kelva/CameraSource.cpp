// The one place that chooses between this machine and a virtual bus.
#include "apps/kelva/CameraSource.h"

#include <filesystem>
#include <stdexcept>
#include <vector>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/kelva/doctor/Machine.h"
#include "apps/kelva/doctor/linux/Survey.h"
#include "bus/BusClient.h"
#include "bus/BusConnection.h"
#include "darwin/registry/Registry.h"
#include "darwin/udev/UdevSource.h"
#include "platform/Process.h"

namespace apps {
namespace {

// Uses a connection of its own, because the source's connection belongs to the registry.
std::vector<doctor::Holder> HoldersOnBus(const std::string& socket, const std::string& serial) {
  std::vector<doctor::Holder> holders;
  try {
    bus::BusConnection bus(socket);
    const auto cameras = bus::Decode<std::vector<bus::CameraStatus>>(bus.Request(bus::Kind::kStatus, {}).payload);
    for (const bus::CameraStatus& camera : cameras.value_or(std::vector<bus::CameraStatus>())) {
      const int pid = static_cast<int>(camera.holder);
      if (camera.serial == serial && pid != 0) holders.push_back({pid, platform::ProcessName(pid)});
    }
  } catch (const std::runtime_error&) {
    // Optional: the message is complete without the holder's name.
  }
  return holders;
}

}  // namespace

void ChooseCameraSource(const std::optional<std::string>& socket, const std::function<void(const std::string&)>& note) {
  if (socket && socket->empty()) throw Failure(ExitCode::kUsage, "--virtual needs the path of a virtual bus's socket.");
  try {
    darwin::Registry::Shared().SetSource(socket ? bus::ConnectBus(*socket) : darwin::MakeUdevSource(note));
  } catch (const std::runtime_error& error) {
    throw Failure(ExitCode::kFailed, Printable(error.what()));
  }
}

std::string HoldersInWords(const std::optional<std::string>& socket, const std::string& serial) {
  return doctor::InWords(socket ? HoldersOnBus(*socket, serial) : doctor::HoldersOfCamera(serial));
}

std::optional<LinePlace> LineOf(const std::optional<std::string>& socket, const std::string& serial) {
  if (socket) {
    // A socket cannot be opened; its folder can.
    const std::filesystem::path path(*socket);
    const std::string folder = path.parent_path().string();
    return LinePlace{folder.empty() ? "." : folder, path.filename().string() + '/' + serial};
  }
  const std::string node = doctor::NodeOfCamera(serial);
  if (node.empty()) return std::nullopt;
  return LinePlace{node, serial};
}

}  // namespace apps

#include "CameraSource.h"

#include <cstdlib>
#include <stdexcept>

#include "darwin/registry/Registry.h"
#include "darwin/udev/UdevSource.h"
#include "frame/Failure.h"
#include "frame/Printable.h"
#include "vcam/client/BusClient.h"

namespace kelva {
namespace {

std::optional<std::string> Socket(const std::optional<std::string>& option) {
  if (option) {
    if (option->empty()) throw Failure(ExitCode::kUsage, "--virtual needs the path of a virtual bus's socket.");
    return option;
  }
  const char* variable = std::getenv("KELVA_VIRTUAL");
  if (variable == nullptr || *variable == '\0') return std::nullopt;
  return variable;
}

}  // namespace

void ChooseCameraSource(const std::optional<std::string>& option) {
  const auto socket = Socket(option);
  try {
    darwin::Registry::Shared().SetSource(socket ? vcam::client::ConnectBus(*socket) : darwin::MakeUdevSource());
  } catch (const std::runtime_error& error) {
    throw Failure(ExitCode::kFailed, Printable(error.what()));
  }
}

}  // namespace kelva

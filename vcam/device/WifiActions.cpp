// Actions that change settings: Wi-Fi names and passphrases, manual controls.
#include "vcam/device/Handlers.h"
#include "vcam/device/Replies.h"
#include "vcam/device/SenseCodes.h"
#include "vcam/device/Sha1.h"

namespace vcam {
namespace {

constexpr std::size_t kMaxSsid = 32;
constexpr std::size_t kMinPassphrase = 8;
constexpr std::size_t kMaxPassphrase = 63;

/// Writes the changed settings back; when that fails the command is refused and the change taken back.
wire::Reply SaveOrRevert(Device& device, const wire::Command& command, const Settings& before) {
  const int error = device.Save();
  if (error == 0) {
    return Done(command.direction == wire::Direction::kToCamera ? static_cast<std::uint32_t>(command.data.size()) : 0);
  }
  device.settings = before;
  return Refuse(SenseOfErrno(error));
}

}  // namespace

wire::Reply SetNetworkName(Device& device, const wire::Command& command, std::size_t network) {
  const std::optional<std::string> name = TextOf(command);
  if (!name) return Refuse(sense::kWrongDataLength);
  if (name->empty() || name->size() > kMaxSsid) return Refuse(sense::kBadParameter);
  const Settings before = device.settings;
  device.settings.networks.at(network).ssid = *name;
  device.console.Log("network " + std::to_string(network) + " named " + *name);
  return SaveOrRevert(device, command, before);
}

wire::Reply SetPassphrase(Device& device, const wire::Command& command, std::size_t network) {
  const std::optional<std::string> passphrase = TextOf(command);
  if (!passphrase) return Refuse(sense::kWrongDataLength);
  if (passphrase->size() < kMinPassphrase || passphrase->size() > kMaxPassphrase) return Refuse(sense::kBadParameter);
  const Settings before = device.settings;
  device.settings.networks.at(network).passphraseSha256 = Sha256Hex(*passphrase);
  device.console.Log("network " + std::to_string(network) + " has a new passphrase");
  return SaveOrRevert(device, command, before);
}

wire::Reply NoteAuthType(Device& device, const wire::Command& command) {
  // The text that names the type does not travel: the command has no data phase.
  if (!HasNoData(command)) return Refuse(sense::kWrongDataLength);
  const Settings before = device.settings;
  ++device.settings.authTypeCommands;
  device.console.Log("authentication type command");
  return SaveOrRevert(device, command, before);
}

wire::Reply NoteManualControl(Device& device, const wire::Command& command) {
  if (!HasNoData(command)) return Refuse(sense::kWrongDataLength);
  const Settings before = device.settings;
  device.settings.lastManualControl = command.cdb[kelva::at::kParameter];
  ++device.settings.manualControlCommands;
  device.console.Log("manual control " + std::to_string(command.cdb[kelva::at::kParameter]));
  return SaveOrRevert(device, command, before);
}

wire::Reply SwitchWifiOff(Device& device, const wire::Command& command) {
  if (!HasNoData(command)) return Refuse(sense::kWrongDataLength);
  const Settings before = device.settings;
  device.settings.wifiOn = false;
  device.console.Log("Wi-Fi off");
  return SaveOrRevert(device, command, before);
}

}  // namespace vcam

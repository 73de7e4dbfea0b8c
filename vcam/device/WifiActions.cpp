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

/// Changes the settings and writes them to the state file. When that fails, undoes the change and refuses the command.
template <typename Change>
wire::Reply ChangeSettings(Device& device, const wire::Command& command, const std::string& note, Change change) {
  const Settings before = device.settings;
  change(device.settings);
  device.console.Log(note);
  const int error = device.Save();
  if (error == 0) {
    return Done(command.direction == wire::Direction::kToCamera ? static_cast<std::uint32_t>(command.data.size()) : 0);
  }
  device.settings = before;
  return Refuse(SenseOfErrno(error));
}

}  // namespace

wire::Reply SetNetworkName(Device& device, const wire::Command& command, const std::string& name) {
  if (name.empty() || name.size() > kMaxSsid) return Refuse(sense::kBadParameter);
  const std::size_t network = command.cdb[kelva::at::kSubCode] - kelva::action::kWifiNameType0;
  return ChangeSettings(device, command, "network " + std::to_string(network) + " named " + name,
                        [&](Settings& settings) { settings.networks.at(network).ssid = name; });
}

wire::Reply SetPassphrase(Device& device, const wire::Command& command, const std::string& passphrase) {
  if (passphrase.size() < kMinPassphrase || passphrase.size() > kMaxPassphrase) return Refuse(sense::kBadParameter);
  const std::size_t network = command.cdb[kelva::at::kSubCode] - kelva::action::kWifiPassphraseType0;
  return ChangeSettings(
      device, command, "network " + std::to_string(network) + " has a new passphrase",
      [&](Settings& settings) { settings.networks.at(network).passphraseSha256 = Sha256Hex(passphrase); });
}

wire::Reply NoteAuthType(Device& device, const wire::Command& command) {
  // The text that names the type does not travel: the command has no data phase.
  return ChangeSettings(device, command, "authentication type command",
                        [](Settings& settings) { ++settings.authTypeCommands; });
}

wire::Reply NoteManualControl(Device& device, const wire::Command& command) {
  const std::uint8_t control = command.cdb[kelva::at::kParameter];
  return ChangeSettings(device, command, "manual control " + std::to_string(control), [&](Settings& settings) {
    settings.lastManualControl = control;
    ++settings.manualControlCommands;
  });
}

wire::Reply SwitchWifiOff(Device& device, const wire::Command& command) {
  return ChangeSettings(device, command, "Wi-Fi off", [](Settings& settings) { settings.wifiOn = false; });
}

}  // namespace vcam

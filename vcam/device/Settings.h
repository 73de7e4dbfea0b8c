#ifndef KELVA_VCAM_DEVICE_SETTINGS_H_
#define KELVA_VCAM_DEVICE_SETTINGS_H_

#include <array>
#include <cstdint>
#include <string>

#include "vcam/device/Storage.h"

namespace vcam {

/// What the camera keeps when it is switched off: its state file, `.kelva/state` in the storage, lines of `key=value`.
struct Settings {
  struct Network {
    std::string ssid;
    std::string passphraseSha256;  ///< never the passphrase itself; empty when none was set
  };
  std::array<Network, 2> networks;
  bool wifiOn = true;
  /// How often the command for the authentication type arrived; it carries no text.
  std::uint32_t authTypeCommands = 0;
  std::uint32_t manualControlCommands = 0;
  /// The control number of the last manual-control command, -1 before the first.
  std::int32_t lastManualControl = -1;
  std::int64_t clockOffsetMs = 0;

  std::string Text() const;
  /// A setting whose line is missing or cannot be read keeps its default.
  static Settings Parse(const std::string& text);
};

/// The state file's settings, or the defaults when there is none.
Settings LoadSettings(const Storage& storage);
/// Writes the state file; returns 0 or the errno.
int SaveSettings(const Storage& storage, const Settings& settings);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_SETTINGS_H_

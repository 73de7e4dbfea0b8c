#ifndef KELVA_VCAM_DEVICE_DEVICE_H_
#define KELVA_VCAM_DEVICE_DEVICE_H_

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "vcam/device/CameraClock.h"
#include "vcam/device/Console.h"
#include "vcam/device/DataSet.h"
#include "vcam/device/KeyIndex.h"
#include "vcam/device/Options.h"
#include "vcam/device/Settings.h"
#include "vcam/device/Storage.h"
#include "vcam/device/Upgrade.h"

namespace vcam {

/// The camera's insides, which the command handlers share.
struct Device {
  explicit Device(Options given)
      : options(std::move(given)),
        storage(options.storage, options.keep),
        clock(options.now),
        settings(LoadSettings(storage)),
        readyAt(options.now()) {
    clock.SetOffset(std::chrono::milliseconds(settings.clockOffsetMs));
  }

  using HostTime = std::chrono::system_clock::time_point;

  /// What the last selection prepared, and the sub-code that reads it.
  struct Selected {
    DataSet data;
    std::uint8_t readSubcode;
    std::uint64_t next = 0;  ///< where a camera goes on that ignores offsets
  };
  struct WriteTarget {
    base::FileDescriptor file;
    std::string path;
    std::uint64_t size = 0;
  };

  bool Ready() const { return options.now() >= readyAt && !upgrade.Writing(options.now()); }
  /// Writes the settings back; the reply for the command that changed them.
  int Save() const { return SaveSettings(storage, settings); }
  /// Brings the keys up to date; a camera without keys knows none.
  void RefreshKeys() {
    if (options.hasKeys) keys.Refresh(storage);
  }

  Options options;
  Storage storage;
  CameraClock clock;
  Console console;
  Settings settings;
  Upgrade upgrade;
  KeyIndex keys;
  HostTime readyAt;
  std::uint32_t doneCount = 0;
  base::Bytes givenTime{};  ///< what a host has set, by a camera whose clock means nothing
  float battery = 100.0F;   ///< per cent; charged at every start
  bool nextUpgradeFails = false;
  std::optional<Selected> selected;
  std::optional<WriteTarget> writing;
};

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_DEVICE_H_

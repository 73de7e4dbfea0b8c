#ifndef KELVA_DARWIN_UDEV_CAMERA_TRACKER_H_
#define KELVA_DARWIN_UDEV_CAMERA_TRACKER_H_

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "darwin/registry/Registry.h"
#include "darwin/udev/ScsiUnit.h"
#include "darwin/udev/Surroundings.h"
#include "darwin/udev/UnitSource.h"

namespace darwin::udev {

/// Where the tracker's findings go.
class Publisher {
 public:
  virtual ~Publisher() = default;
  /// Makes the unit known; the result names it for Withdraw.
  virtual EntryId Publish(const ScsiUnit& unit) = 0;
  virtual void Withdraw(EntryId published) = 0;
};

/// Publishes every unit that is plugged in exactly once, whatever the monitor loses, and withdraws it when it goes.
/// Publishes a camera only when this user may use its node.
class CameraTracker {
 public:
  CameraTracker(UnitSource& source, Surroundings& surroundings, Publisher& publisher)
      : source_(source), surroundings_(surroundings), publisher_(publisher) {}

  /// Publishes what is present. Waits at most a second for permissions that udev is still about to give, so that a
  /// camera that was there before never looks newly attached.
  void Start();
  /// Handles the monitor's messages, and looks again at units that wait for a permission. Never blocks.
  void Dispatch();
  /// Milliseconds until a permission is to be looked at again; -1 when none is awaited.
  int TimeoutMs() const;

 private:
  struct Known {
    ScsiUnit unit;
    /// The number of the latest event before sysfs was read for this unit.
    std::uint64_t settledBy = 0;
    std::optional<EntryId> published = {};
    /// While unpublished: looks still to come, and the time of the next one.
    int triesLeft = 0;
    std::int64_t nextTryMs = 0;

    bool Waits() const { return !published && triesLeft > 0; }
  };

  bool DrainMonitor();
  void OnSeen(const Notice& notice);
  void OnGone(const Notice& notice);
  void Reconcile();
  void Meet(const ScsiUnit& unit, std::uint64_t settledBy);
  void Admit(const ScsiUnit& unit, std::uint64_t settledBy);
  void Forget(const std::string& path);
  void TryPublish(Known& known);
  void TryDue();
  void GiveUp(Known& known, int why);
  bool AnyWaits() const;

  UnitSource& source_;
  Surroundings& surroundings_;
  Publisher& publisher_;
  std::map<std::string, Known> known_;  // by device path: after a removal nothing else is left of a device
};

}  // namespace darwin::udev

#endif  // KELVA_DARWIN_UDEV_CAMERA_TRACKER_H_

// Publishes and withdraws cameras correctly even when udev's messages come late, twice or not at all.

#include "darwin/udev/CameraTracker.h"

#include <algorithm>
#include <cstring>
#include <set>

namespace darwin::udev {
namespace {

constexpr int kRetryMs = 200;
constexpr int kTries = 25;              // five seconds: a loaded machine applies its rules late
constexpr int kTriesAtStart = 5;        // one second in all
constexpr int kLossesPerDispatch = 64;  // a monitor that only loses must not hold the run loop

}  // namespace

// Waits for late permissions here, not in the run loop: a camera that is present at the start must not look like an
// attach afterwards, because an attach launches the application.
void CameraTracker::Start() {
  Reconcile();
  for (int looks = 0; looks < kTriesAtStart && AnyWaits(); ++looks) {
    surroundings_.SleepMs(kRetryMs);
    for (auto& [path, known] : known_) {
      if (!known.Waits()) continue;
      if (looks == kTriesAtStart - 1) known.triesLeft = 1;  // the last look gives up and reports it
      TryPublish(known);
    }
  }
}

void CameraTracker::Dispatch() {
  if (DrainMonitor()) Reconcile();
  TryDue();
}

int CameraTracker::TimeoutMs() const {
  std::optional<std::int64_t> next;
  for (const auto& [path, known] : known_) {
    if (known.Waits()) next = std::min(next.value_or(known.nextTryMs), known.nextTryMs);
  }
  if (!next) return -1;
  return static_cast<int>(std::clamp<std::int64_t>(*next - surroundings_.NowMs(), 0, kRetryMs));
}

// True when messages were lost.
bool CameraTracker::DrainMonitor() {
  int losses = 0;
  while (losses < kLossesPerDispatch) {
    const Notice notice = source_.Receive();
    switch (notice.kind) {
      case Notice::Kind::kNothing:
        return losses > 0;
      case Notice::Kind::kSeen:
        OnSeen(notice);
        break;
      case Notice::Kind::kGone:
        OnGone(notice);
        break;
      case Notice::Kind::kLost:
        ++losses;  // what survived is still in the queue and comes first
        break;
    }
  }
  return true;
}

void CameraTracker::OnSeen(const Notice& notice) {
  // sysfs may already show a later device than the one this message was about, so the messages up to now are old.
  if (notice.unit) Meet(*notice.unit, std::max(notice.sequence, source_.LatestSequence()));
}

void CameraTracker::OnGone(const Notice& notice) {
  const auto found = known_.find(notice.path);
  if (found == known_.end()) return;
  const Known& known = found->second;
  if (notice.sequence != 0 && notice.sequence <= known.settledBy && source_.Look(notice.path) == known.unit) {
    return;  // an old message, about the device that was here before
  }
  Forget(notice.path);
}

// After lost messages only sysfs is reliable. The sequence number is read after sysfs, so messages up to it are old.
void CameraTracker::Reconcile() {
  const std::vector<ScsiUnit> present = source_.Enumerate();
  const std::uint64_t settledBy = source_.LatestSequence();
  // Departures first: a path that another device has taken over must be free before it is published.
  std::set<std::string> gone;
  for (const auto& [path, known] : known_) gone.insert(path);
  for (const ScsiUnit& unit : present) gone.erase(unit.path);
  for (const std::string& path : gone) Forget(path);
  for (const ScsiUnit& unit : present) Meet(unit, settledBy);
}

void CameraTracker::Meet(const ScsiUnit& unit, std::uint64_t settledBy) {
  const auto found = known_.find(unit.path);
  if (found == known_.end()) return Admit(unit, settledBy);
  Known& known = found->second;
  if (known.unit != unit) {  // another device at the same path, whose removal nobody reported
    Forget(unit.path);
    return Admit(unit, settledBy);
  }
  known.settledBy = std::max(known.settledBy, settledBy);
  if (known.published) return;
  known.triesLeft = kTries;  // a change of the device may be the permission
  TryPublish(known);
}

void CameraTracker::Admit(const ScsiUnit& unit, std::uint64_t settledBy) {
  Known& known = known_[unit.path];
  known.unit = unit;
  known.settledBy = settledBy;
  known.triesLeft = kTries;
  TryPublish(known);
}

void CameraTracker::Forget(const std::string& path) {
  const auto found = known_.find(path);
  const std::optional<EntryId> published = found->second.published;
  known_.erase(found);
  if (published) publisher_.Withdraw(*published);
}

// A bad camera is only reported, never opened, so it needs no permission.
void CameraTracker::TryPublish(Known& known) {
  const int why = known.unit.IsBadCamera() ? 0 : surroundings_.WhyNotUsable(known.unit.node);
  if (why == 0) {
    known.published = publisher_.Publish(known.unit);
    return;
  }
  known.nextTryMs = surroundings_.NowMs() + kRetryMs;
  if (--known.triesLeft == 0) GiveUp(known, why);
}

void CameraTracker::TryDue() {
  const std::int64_t now = surroundings_.NowMs();
  for (auto& [path, known] : known_) {
    if (known.Waits() && known.nextTryMs <= now) TryPublish(known);
  }
}

void CameraTracker::GiveUp(Known& known, int why) {
  surroundings_.Report("A camera is attached, but this user cannot use " + known.unit.node + " (" + std::strerror(why) +
                       "); run 'kelva doctor' for what mends it.");
}

bool CameraTracker::AnyWaits() const {
  return std::any_of(known_.begin(), known_.end(), [](const auto& entry) { return entry.second.Waits(); });
}

}  // namespace darwin::udev

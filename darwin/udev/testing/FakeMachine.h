#ifndef KELVA_DARWIN_UDEV_TESTING_FAKE_MACHINE_H_
#define KELVA_DARWIN_UDEV_TESTING_FAKE_MACHINE_H_

#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "darwin/udev/CameraTracker.h"

namespace darwin::udev {

/// A machine for the tracker: what is plugged in, a queue of messages that can overflow, a clock, and nodes whose
/// permission comes when a test says. It is also the publisher, and keeps count of what was published.
class FakeMachine : public UnitSource, public Surroundings, public Publisher {
 public:
  static ScsiUnit Camera(const std::string& serial, const std::string& path = "/devices/1/sg0");

  /// A device comes or goes, and a message about it is queued.
  void Plug(const ScsiUnit& unit);
  void Unplug(const std::string& path);
  /// A device is in sysfs already; the message about it has still to be numbered and sent.
  void Appear(const ScsiUnit& unit) { present_[unit.path] = unit; }
  /// The n-th call of Receive from now on (1 is the next) reports an overflow and loses what is queued beyond `kept`.
  void OverflowAtReceive(int n, std::size_t kept = 0) { overflowAt_ = receives_ + n, kept_ = kept; }
  bool QueueIsEmpty() const { return queue_.empty(); }
  /// The serials that are published now, sorted.
  std::vector<std::string> Published() const;
  std::vector<std::string> Present() const;

  std::set<std::string> unusable;                ///< nodes that this user may not use yet
  std::map<std::string, std::int64_t> usableAt;  ///< nodes that become usable at a time of the clock
  std::int64_t now = 1000;
  bool alwaysLoses = false;
  bool numbersEvents = true;
  int publishes = 0;
  int receives_ = 0;
  std::vector<std::string> reports;

  std::vector<ScsiUnit> Enumerate() override;
  std::optional<ScsiUnit> Look(const std::string& path) override;
  std::uint64_t LatestSequence() override { return numbersEvents ? sequence_ : 0; }
  Notice Receive() override;

  std::int64_t NowMs() override { return now; }
  void SleepMs(int milliseconds) override { now += milliseconds; }
  int WhyNotUsable(const std::string& node) override;
  void Report(const std::string& sentence) override { reports.push_back(sentence); }

  EntryId Publish(const ScsiUnit& unit) override;
  void Withdraw(EntryId published) override { published_.erase(published); }

 private:
  void Queue(Notice::Kind kind, const std::string& path);

  std::map<std::string, ScsiUnit> present_;
  std::deque<Notice> queue_;
  std::map<EntryId, std::string> published_;
  std::uint64_t sequence_ = 100;
  EntryId nextId_ = 1;
  int overflowAt_ = 0;
  std::size_t kept_ = 0;
};

}  // namespace darwin::udev

#endif  // KELVA_DARWIN_UDEV_TESTING_FAKE_MACHINE_H_

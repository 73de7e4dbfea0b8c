#include "darwin/udev/UdevSource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

#include "darwin/udev/CameraTracker.h"
#include "darwin/udev/UdevUnitSource.h"
#include "tests/umockdev/MockMachine.h"

namespace darwin::udev {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Remembers what is published, by serial number.
class Published : public Publisher {
 public:
  EntryId Publish(const ScsiUnit& unit) override {
    ++publishes;
    serials_[next_] = unit.serial;
    return next_++;
  }
  void Withdraw(EntryId id) override { serials_.erase(id); }

  std::vector<std::string> Serials() const {
    std::vector<std::string> serials;
    for (const auto& [id, serial] : serials_) serials.push_back(serial);
    std::sort(serials.begin(), serials.end());
    return serials;
  }

  int publishes = 0;

 private:
  std::map<EntryId, std::string> serials_;
  EntryId next_ = 1;
};

/// udev's own monitor, whose n-th receive from now on says that the kernel dropped what was queued.
class LossyUnitSource : public UdevUnitSource {
 public:
  int loseAtReceive = 0;
  int receives = 0;

  Notice Receive() override {
    if (++receives != loseAtReceive) return UdevUnitSource::Receive();
    while (UdevUnitSource::Receive().kind != Notice::Kind::kNothing) {
    }
    return {Notice::Kind::kLost};
  }
};

class UdevTrackerTest : public testing::Test {
 protected:
  UdevTrackerTest() { mock::GiveUpFileOverride(); }

  void DispatchAll() {
    pollfd waiting{units_.Descriptor(), POLLIN, 0};
    do {
      tracker_.Dispatch();
    } while (::poll(&waiting, 1, 0) > 0);
  }

  mock::MockMachine machine_;
  LossyUnitSource units_;
  ProcessSurroundings surroundings_;
  Published published_;
  CameraTracker tracker_{units_, surroundings_, published_};
};

TEST_F(UdevTrackerTest, PlugUnplugAndAnotherCameraInItsPlaceAreFollowed) {
  tracker_.Start();
  machine_.Plug({.serial = "A"});
  DispatchAll();
  EXPECT_THAT(published_.Serials(), ElementsAre("A"));
  machine_.Unplug(0);
  machine_.Plug({.serial = "B"});
  DispatchAll();
  EXPECT_THAT(published_.Serials(), ElementsAre("B"));
}

TEST_F(UdevTrackerTest, APermissionThatIsLateByAnEventIsNoticedByTheEvent) {
  tracker_.Start();
  machine_.Plug({.serial = "A"});
  machine_.SetUsable(0, false);
  DispatchAll();
  EXPECT_THAT(published_.Serials(), IsEmpty());
  EXPECT_GT(tracker_.TimeoutMs(), 0);
  machine_.SetUsable(0, true);
  machine_.Change(0);
  DispatchAll();
  EXPECT_THAT(published_.Serials(), ElementsAre("A"));
  EXPECT_EQ(tracker_.TimeoutMs(), -1);
}

TEST_F(UdevTrackerTest, APermissionThatComesWithoutAnEventIsNoticedByTheRetry) {
  tracker_.Start();
  machine_.Plug({.serial = "A"});
  machine_.SetUsable(0, false);
  DispatchAll();
  machine_.SetUsable(0, true);
  while (tracker_.TimeoutMs() >= 0) {
    ::poll(nullptr, 0, tracker_.TimeoutMs());
    tracker_.Dispatch();
  }
  EXPECT_THAT(published_.Serials(), ElementsAre("A"));
}

TEST_F(UdevTrackerTest, AfterALossAtAnyReceiveTheViewEqualsSysfs) {
  tracker_.Start();
  for (int lose = 1; lose <= 30; ++lose) {
    units_.loseAtReceive = units_.receives + lose;
    const int before = published_.publishes;
    machine_.Plug({.serial = "A", .port = 0});
    machine_.Plug({.serial = "B", .port = 1});
    DispatchAll();
    machine_.Unplug(0);
    machine_.Plug({.serial = "C", .port = 0});
    machine_.Plug({.serial = "D", .hubs = 1, .port = 2});
    DispatchAll();
    units_.loseAtReceive = units_.receives + 1;  // at the latest now
    DispatchAll();
    EXPECT_EQ(published_.Serials(), machine_.Serials()) << "lost at receive " << lose;
    EXPECT_EQ(published_.publishes - before, 4) << "lost at receive " << lose;
    for (int port = 0; port < 3; ++port) machine_.Unplug(port);
    DispatchAll();
    EXPECT_THAT(published_.Serials(), IsEmpty()) << "lost at receive " << lose;
  }
}

}  // namespace
}  // namespace darwin::udev

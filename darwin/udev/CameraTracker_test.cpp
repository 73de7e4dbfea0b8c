#include "darwin/udev/CameraTracker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "darwin/udev/testing/FakeMachine.h"

namespace darwin::udev {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class CameraTrackerTest : public testing::Test {
 protected:
  static ScsiUnit Camera(const std::string& serial, const std::string& path = "/devices/1/sg0") {
    return FakeMachine::Camera(serial, path);
  }

  FakeMachine machine_;
  CameraTracker tracker_{machine_, machine_, machine_};
};

TEST_F(CameraTrackerTest, CamerasPresentAtStartArePublishedByIt) {
  machine_.Plug(Camera("A", "/devices/1/sg0"));
  machine_.Plug(Camera("B", "/devices/2/sg1"));
  tracker_.Start();
  EXPECT_THAT(machine_.Published(), ElementsAre("A", "B"));
}

TEST_F(CameraTrackerTest, MessagesAboutCamerasOfTheFirstEnumerationPublishNothingAgain) {
  machine_.Plug(Camera("A"));
  tracker_.Start();
  tracker_.Dispatch();
  EXPECT_EQ(machine_.publishes, 1);
}

TEST_F(CameraTrackerTest, AnOldRemovalDoesNotEndTheCameraThatCameAfterIt) {
  machine_.Plug(Camera("A"));
  machine_.Unplug(Camera("A").path);
  machine_.Plug(Camera("B"));
  tracker_.Start();
  tracker_.Dispatch();
  EXPECT_THAT(machine_.Published(), ElementsAre("B"));
  EXPECT_EQ(machine_.publishes, 1);
}

TEST_F(CameraTrackerTest, TheLatestRemovalBeforeTheEnumerationDoesNotEndTheCameraThatIsBack) {
  machine_.Plug(Camera("A"));
  machine_.Unplug(Camera("A").path);
  machine_.Appear(Camera("A"));
  tracker_.Start();
  tracker_.Dispatch();
  EXPECT_THAT(machine_.Published(), ElementsAre("A"));
  EXPECT_EQ(machine_.publishes, 1);
}

TEST_F(CameraTrackerTest, AnOldRemovalDoesNotEndTheCameraThatAMessageHasShownSince) {
  machine_.Plug(Camera("A"));
  tracker_.Start();
  tracker_.Dispatch();
  machine_.Plug(Camera("A"));  // a change of it, read when it is back already
  machine_.Unplug(Camera("A").path);
  machine_.Plug(Camera("A"));
  tracker_.Dispatch();
  EXPECT_THAT(machine_.Published(), ElementsAre("A"));
  EXPECT_EQ(machine_.publishes, 1);
}

TEST_F(CameraTrackerTest, ARemovalSentBeforeTheEnumerationCountsWhenTheCameraIsGone) {
  machine_.Plug(Camera("A"));
  tracker_.Start();
  machine_.Unplug(Camera("A").path);
  tracker_.Dispatch();
  EXPECT_THAT(machine_.Published(), IsEmpty());
}

TEST_F(CameraTrackerTest, PlugAndUnplugAreFollowed) {
  tracker_.Start();
  machine_.Plug(Camera("A"));
  tracker_.Dispatch();
  EXPECT_THAT(machine_.Published(), ElementsAre("A"));
  machine_.Unplug(Camera("A").path);
  tracker_.Dispatch();
  EXPECT_THAT(machine_.Published(), IsEmpty());
}

TEST_F(CameraTrackerTest, AChangeOfAPublishedCameraIsNoNewCamera) {
  tracker_.Start();
  machine_.Plug(Camera("A"));
  machine_.Plug(Camera("A"));
  tracker_.Dispatch();
  EXPECT_EQ(machine_.publishes, 1);
}

TEST_F(CameraTrackerTest, ARePlugIsANewCameraAlthoughBothMessagesWait) {
  machine_.Plug(Camera("A"));
  tracker_.Start();
  tracker_.Dispatch();
  machine_.Unplug(Camera("A").path);
  machine_.Plug(Camera("A"));
  tracker_.Dispatch();
  EXPECT_THAT(machine_.Published(), ElementsAre("A"));
  EXPECT_EQ(machine_.publishes, 2);
}

TEST_F(CameraTrackerTest, AnotherCameraAtTheSamePathReplacesTheFirst) {
  machine_.Plug(Camera("A"));
  tracker_.Start();
  machine_.Unplug(Camera("A").path);
  machine_.Plug(Camera("B"));
  tracker_.Dispatch();
  EXPECT_THAT(machine_.Published(), ElementsAre("B"));
}

TEST_F(CameraTrackerTest, WithoutEventNumbersRemovalsAlwaysCount) {
  machine_.numbersEvents = false;
  machine_.Plug(Camera("A"));
  tracker_.Start();
  machine_.Unplug(Camera("A").path);
  tracker_.Dispatch();
  EXPECT_THAT(machine_.Published(), IsEmpty());
}

TEST_F(CameraTrackerTest, TheRemovalOfAnUnknownDeviceIsIgnored) {
  tracker_.Start();
  machine_.Unplug("/devices/9/sg9");
  tracker_.Dispatch();
  EXPECT_THAT(machine_.Published(), IsEmpty());
}

// The kernel drops messages; here at each receive of a history in turn, with none, one or two of the queue surviving.
TEST_F(CameraTrackerTest, AfterAnOverflowAtAnyReceiveTheViewEqualsWhatIsPresent) {
  for (std::size_t kept = 0; kept < 3; ++kept) {
    for (int overflow = 1; overflow <= 12; ++overflow) {
      FakeMachine machine;
      CameraTracker tracker(machine, machine, machine);
      machine.Plug(Camera("A"));
      tracker.Start();
      machine.OverflowAtReceive(overflow, kept);
      machine.Unplug(Camera("A").path);
      machine.Plug(Camera("B"));
      machine.Plug(Camera("C", "/devices/2/sg1"));
      tracker.Dispatch();
      machine.Unplug("/devices/2/sg1");
      machine.Plug(Camera("D", "/devices/2/sg1"));
      machine.Plug(Camera("E", "/devices/3/sg2"));
      machine.Unplug(Camera("B").path);
      while (!machine.QueueIsEmpty() || machine.receives_ < 14) tracker.Dispatch();
      EXPECT_EQ(machine.Published(), machine.Present()) << "overflow at receive " << overflow << ", kept " << kept;
      EXPECT_LE(machine.publishes, 5) << "overflow at receive " << overflow << ", kept " << kept;
    }
  }
}

TEST_F(CameraTrackerTest, ACameraThatCameWhileMessagesWereLostIsPublishedOnce) {
  tracker_.Start();
  machine_.Plug(Camera("A"));
  machine_.OverflowAtReceive(1);
  tracker_.Dispatch();
  tracker_.Dispatch();
  EXPECT_EQ(machine_.publishes, 1);
}

TEST_F(CameraTrackerTest, AMonitorThatOnlyLosesDoesNotHoldTheRunLoop) {
  tracker_.Start();
  machine_.alwaysLoses = true;
  machine_.Plug(Camera("A"));
  tracker_.Dispatch();
  EXPECT_THAT(machine_.Published(), ElementsAre("A"));
}

TEST_F(CameraTrackerTest, APermissionThatComesWithinTheFirstSecondIsAwaitedByTheStart) {
  machine_.Plug(Camera("A"));
  machine_.usableAt["/dev/sg0"] = machine_.now + 900;
  tracker_.Start();
  EXPECT_THAT(machine_.Published(), ElementsAre("A"));
}

TEST_F(CameraTrackerTest, TheStartWaitsAtMostASecondAndSaysWhatIsMissing) {
  machine_.Plug(Camera("A"));
  machine_.unusable.insert("/dev/sg0");
  tracker_.Start();
  EXPECT_EQ(machine_.now, 1000 + 1000);
  EXPECT_THAT(machine_.Published(), IsEmpty());
  EXPECT_THAT(machine_.reports, ElementsAre(HasSubstr("cannot use /dev/sg0 (Permission denied)")));
  EXPECT_EQ(tracker_.TimeoutMs(), -1);
}

TEST_F(CameraTrackerTest, ACameraThatIsUsableIsPublishedOnceWhileTheStartWaitsForAnother) {
  machine_.Plug(Camera("A", "/devices/1/sg0"));
  machine_.Plug(Camera("B", "/devices/2/sg1"));
  machine_.unusable.insert("/dev/sg1");
  tracker_.Start();
  EXPECT_THAT(machine_.Published(), ElementsAre("A"));
  EXPECT_EQ(machine_.publishes, 1);
}

TEST_F(CameraTrackerTest, AStartWithoutMissingPermissionsDoesNotWait) {
  machine_.Plug(Camera("A"));
  tracker_.Start();
  EXPECT_EQ(machine_.now, 1000);
}

TEST_F(CameraTrackerTest, ALatePermissionIsRetriedWhenItsTimeHasCome) {
  tracker_.Start();
  machine_.Plug(Camera("A"));
  machine_.usableAt["/dev/sg0"] = machine_.now + 300;
  tracker_.Dispatch();
  int waits = 0;
  while (tracker_.TimeoutMs() >= 0 && waits < 10) {
    EXPECT_GE(tracker_.TimeoutMs(), 100);
    machine_.now += tracker_.TimeoutMs();
    tracker_.Dispatch();
    ++waits;
  }
  EXPECT_EQ(waits, 2);
  EXPECT_THAT(machine_.Published(), ElementsAre("A"));
}

TEST_F(CameraTrackerTest, OfTwoCamerasThatWaitTheOneThatIsDueFirstSaysWhen) {
  tracker_.Start();
  machine_.unusable = {"/dev/sg0", "/dev/sg1"};
  machine_.Plug(Camera("A", "/devices/1/sg0"));
  tracker_.Dispatch();
  EXPECT_EQ(tracker_.TimeoutMs(), 200);
  machine_.now += 80;
  machine_.Plug(Camera("B", "/devices/2/sg1"));
  tracker_.Dispatch();
  EXPECT_EQ(tracker_.TimeoutMs(), 120);
}

TEST_F(CameraTrackerTest, APermissionThatNeverComesIsGivenUpSaidOnceAndNoLongerPolled) {
  tracker_.Start();
  machine_.Plug(Camera("A"));
  machine_.unusable.insert("/dev/sg0");
  tracker_.Dispatch();
  while (tracker_.TimeoutMs() >= 0 && machine_.now < 60000) {
    machine_.now += tracker_.TimeoutMs();
    tracker_.Dispatch();
  }
  EXPECT_LT(machine_.now, 7000);
  EXPECT_EQ(machine_.reports.size(), 1U);
}

TEST_F(CameraTrackerTest, AChangeOfAGivenUpCameraIsLookedAtAgain) {
  machine_.Plug(Camera("A"));
  machine_.unusable.insert("/dev/sg0");
  tracker_.Start();
  tracker_.Dispatch();
  machine_.unusable.clear();
  machine_.Plug(Camera("A"));
  tracker_.Dispatch();
  EXPECT_THAT(machine_.Published(), ElementsAre("A"));
}

TEST_F(CameraTrackerTest, ACameraThatGoesWhileItWaitsForAPermissionIsForgotten) {
  tracker_.Start();
  machine_.Plug(Camera("A"));
  machine_.unusable.insert("/dev/sg0");
  tracker_.Dispatch();
  machine_.Unplug(Camera("A").path);
  tracker_.Dispatch();
  EXPECT_EQ(tracker_.TimeoutMs(), -1);
}

TEST_F(CameraTrackerTest, ABadCameraNeedsNoPermission) {
  ScsiUnit bad = Camera("BAD");
  bad.peripheralType = 5;
  bad.revision = "Q42";
  bad.node = "";
  machine_.unusable.insert("");
  machine_.Plug(bad);
  tracker_.Start();
  EXPECT_THAT(machine_.Published(), ElementsAre("BAD"));
}

}  // namespace
}  // namespace darwin::udev

#include "darwin/udev/UdevUnitSource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <algorithm>

#include "tests/umockdev/MockMachine.h"

namespace darwin::udev {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class UdevUnitSourceTest : public testing::Test {
 protected:
  // The notices that arrive until nothing more does.
  std::vector<Notice> ReceiveAll() {
    std::vector<Notice> notices;
    pollfd waiting{source_.Descriptor(), POLLIN, 0};
    while (::poll(&waiting, 1, 0) > 0) {
      for (Notice notice = source_.Receive(); notice.kind != Notice::Kind::kNothing; notice = source_.Receive()) {
        notices.push_back(notice);
      }
    }
    return notices;
  }

  mock::MockMachine machine_;
  UdevUnitSource source_;
};

TEST_F(UdevUnitSourceTest, AnEmptyMachineHasNoUnits) {
  EXPECT_THAT(source_.Enumerate(), IsEmpty());
}

TEST_F(UdevUnitSourceTest, ACameraIsReadWithItsUsbDevicesSerial) {
  machine_.Plug({.serial = "SN7", .product = "Glimmer", .revision = "2.10", .peripheralType = 0, .port = 3});
  const auto units = source_.Enumerate();
  ASSERT_THAT(units, SizeIs(1));
  EXPECT_EQ(units[0].node, "/dev/sg3");
  EXPECT_EQ(units[0].path, machine_.PathOf(3));
  EXPECT_EQ(units[0].vendor, "Kelva");
  EXPECT_EQ(units[0].product, "Glimmer");
  EXPECT_EQ(units[0].revision, "2.10");
  EXPECT_EQ(units[0].peripheralType, 0);
  EXPECT_EQ(units[0].serial, "SN7");
}

TEST_F(UdevUnitSourceTest, BehindHubsTheSerialIsTheCamerasOwn) {
  machine_.Plug({.serial = "SN7", .hubs = 2});
  EXPECT_EQ(source_.Enumerate().at(0).serial, "SN7");
}

TEST_F(UdevUnitSourceTest, OtherVendorsAreLeftOut) {
  machine_.Plug({.vendor = "ATA", .port = 0});
  machine_.Plug({.vendor = "KelvaX", .port = 1});
  machine_.Plug({.vendor = "kelva", .port = 2});
  EXPECT_THAT(source_.Enumerate(), IsEmpty());
}

TEST_F(UdevUnitSourceTest, ABadCameraIsOneUnitWithoutANode) {
  machine_.Plug({.revision = "Q42", .peripheralType = 5});
  const auto units = source_.Enumerate();
  ASSERT_THAT(units, SizeIs(1));
  EXPECT_TRUE(units[0].IsBadCamera());
  EXPECT_EQ(units[0].node, "");
}

TEST_F(UdevUnitSourceTest, ACompactDiscOfAnotherRevisionIsACamera) {
  machine_.Plug({.revision = "Q43", .peripheralType = 5});
  EXPECT_FALSE(source_.Enumerate().at(0).IsBadCamera());
}

TEST_F(UdevUnitSourceTest, TheBadRevisionOnAnotherTypeIsACamera) {
  machine_.Plug({.revision = "Q42", .peripheralType = 0});
  EXPECT_EQ(source_.Enumerate().at(0).node, "/dev/sg0");
}

TEST_F(UdevUnitSourceTest, PlugAndUnplugAreReceivedWithRunningNumbers) {
  machine_.Plug({.serial = "A"});
  const std::string path = machine_.PathOf(0);
  auto notices = ReceiveAll();
  const auto seen = std::find_if(notices.begin(), notices.end(), [](const Notice& n) { return n.unit.has_value(); });
  ASSERT_NE(seen, notices.end());
  EXPECT_EQ(seen->kind, Notice::Kind::kSeen);
  EXPECT_EQ(seen->path, path);
  EXPECT_EQ(seen->unit->serial, "A");
  const auto seenAt = seen->sequence;
  machine_.Unplug(0);
  notices = ReceiveAll();
  const auto gone = std::find_if(notices.begin(), notices.end(), [&](const Notice& n) { return n.path == path; });
  ASSERT_NE(gone, notices.end());
  EXPECT_EQ(gone->kind, Notice::Kind::kGone);
  EXPECT_GT(gone->sequence, seenAt);
}

TEST_F(UdevUnitSourceTest, ALookAtAPathShowsWhatIsThereNow) {
  machine_.Plug({.serial = "A"});
  const std::string path = machine_.PathOf(0);
  EXPECT_EQ(source_.Look(path)->serial, "A");
  machine_.Unplug(0);
  EXPECT_FALSE(source_.Look(path));
}

TEST_F(UdevUnitSourceTest, TheSameCameraPluggedInAgainIsAnotherUnit) {
  machine_.Plug({.serial = "A"});
  const auto first = source_.Enumerate().at(0);
  machine_.Unplug(0);
  machine_.Plug({.serial = "A"});
  const auto second = source_.Enumerate().at(0);
  EXPECT_EQ(first.path, second.path);
  EXPECT_NE(first, second);
}

}  // namespace
}  // namespace darwin::udev

#include "vcam/usbip/WireFaults.h"

#include <gtest/gtest.h>

namespace vcam::usbip {
namespace {

TEST(WireFaults, SpoilsTheChosenCommandOnly) {
  WireFaults faults;
  EXPECT_EQ(faults.Next(), WireFault::kNone);
  faults.Arm(WireFault::kWrongTag, 2);
  EXPECT_EQ(faults.Next(), WireFault::kNone);
  EXPECT_EQ(faults.Next(), WireFault::kWrongTag);
  EXPECT_EQ(faults.Next(), WireFault::kNone);
  EXPECT_EQ(faults.commands(), 4U);
}

TEST(WireFaults, SpoilsEachCommandThatWasChosen) {
  WireFaults faults;
  faults.Arm(WireFault::kBabble, 3);
  faults.Arm(WireFault::kWrongTag, 1);
  EXPECT_EQ(faults.Next(), WireFault::kWrongTag);
  EXPECT_EQ(faults.Next(), WireFault::kNone);
  EXPECT_EQ(faults.Next(), WireFault::kBabble);
  EXPECT_EQ(faults.Next(), WireFault::kNone);
}

TEST(WireFaults, GivesTheFirstOfTwoForOneCommand) {
  WireFaults faults;
  faults.Arm(WireFault::kBabble);
  faults.Arm(WireFault::kWrongTag);
  EXPECT_EQ(faults.Next(), WireFault::kBabble);
}

TEST(WireFaults, CanBeTakenBack) {
  WireFaults faults;
  faults.Arm(WireFault::kBabble);
  faults.Arm(WireFault::kWrongTag, 2);
  faults.Disarm();
  EXPECT_EQ(faults.Next(), WireFault::kNone);
  EXPECT_EQ(faults.Next(), WireFault::kNone);
}

}  // namespace
}  // namespace vcam::usbip

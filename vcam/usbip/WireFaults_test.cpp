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

TEST(WireFaults, CanBeTakenBack) {
  WireFaults faults;
  faults.Arm(WireFault::kBabble);
  faults.Disarm();
  EXPECT_EQ(faults.Next(), WireFault::kNone);
}

}  // namespace
}  // namespace vcam::usbip

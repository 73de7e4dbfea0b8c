#include "vcam/usbip/WireFault.h"

#include <gtest/gtest.h>

namespace vcam::usbip {
namespace {

TEST(WireFault, EveryFaultIsFoundByItsName) {
  for (const WireFault fault : AllWireFaults()) {
    EXPECT_EQ(WireFaultByName(NameOf(fault)), fault) << NameOf(fault);
  }
  EXPECT_EQ(AllWireFaults().size(), 10U);
}

TEST(WireFault, NoOtherNameIsTaken) {
  EXPECT_EQ(WireFaultByName("none"), std::nullopt);
  EXPECT_EQ(WireFaultByName(""), std::nullopt);
}

}  // namespace
}  // namespace vcam::usbip

#include "vcam/faults/Fault.h"

#include <gmock/gmock.h>

namespace vcam {
namespace {

TEST(Fault, HasANameThatFindsItAgain) {
  for (const FaultKind kind : AllFaults()) {
    EXPECT_EQ(FaultByName(NameOf(kind)), kind);
  }
  EXPECT_EQ(FaultByName("stall"), FaultKind::kStall);
  EXPECT_EQ(FaultByName(""), std::nullopt);
  EXPECT_EQ(FaultByName("Stall"), std::nullopt);
}

TEST(Fault, CountsAllOfThem) {
  EXPECT_EQ(AllFaults().size(), 15U);
}

}  // namespace
}  // namespace vcam

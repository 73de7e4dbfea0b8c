#include "apps/doctor/Holder.h"

#include <gtest/gtest.h>

namespace apps::doctor {
namespace {

TEST(HolderTest, HoldersAreNamedOneAfterAnother) {
  EXPECT_EQ(InWords({}), "");
  EXPECT_EQ(InWords({{4711, "photos"}}), "photos (process 4711)");
  EXPECT_EQ(InWords({{4711, "photos"}, {4712, "kelva"}}), "photos (process 4711), kelva (process 4712)");
}

}  // namespace
}  // namespace apps::doctor

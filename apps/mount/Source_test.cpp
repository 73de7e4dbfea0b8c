#include "apps/mount/Source.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

TEST(SourceTest, ItIsSafeInAListOfOptions) {
  EXPECT_EQ(SourceOf("K1"), "Kelva K1");
  EXPECT_EQ(SourceOf(""), "Kelva");
  EXPECT_EQ(SourceOf("a,b\\c/d"), "Kelva a%2Cb%5Cc%2Fd");
}

TEST(SourceTest, ACameraThatIsNotMountedHasNoMount) {
  EXPECT_EQ(MountOf("a camera that nobody has"), std::nullopt);
}

}  // namespace
}  // namespace apps

#include "apps/mount/Source.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

TEST(SourceTest, ItIsSafeInAListOfOptions) {
  EXPECT_EQ(SourceOf("K1", std::nullopt), "Kelva K1");
  EXPECT_EQ(SourceOf("", std::nullopt), "Kelva");
  EXPECT_EQ(SourceOf("a,b\\c/d", std::nullopt), "Kelva a%2Cb%5Cc%2Fd");
  EXPECT_EQ(SourceOf("K1", "/tmp/a,b"), "Kelva K1 of %2Ftmp%2Fa%2Cb");
}

TEST(SourceTest, CamerasOfTwoBusesAreTwo) {
  EXPECT_NE(SourceOf("K1", "/tmp/one"), SourceOf("K1", "/tmp/two"));
  EXPECT_EQ(SourceOf("K1", "/tmp/../tmp/one"), SourceOf("K1", "/tmp/one"));
}

TEST(SourceTest, ACameraThatIsNotMountedHasNoMount) {
  EXPECT_EQ(MountOf("a camera that nobody has", std::nullopt), std::nullopt);
}

}  // namespace
}  // namespace apps

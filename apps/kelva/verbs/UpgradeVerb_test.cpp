#include <cstdio>

#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using UpgradeVerbTest = VerbTest;

TEST_F(UpgradeVerbTest, NothingIsSentWithoutAConfirmation) {
  Put("../image.bin", "firmware");
  const std::string image = (folder / "image.bin").string();
  ASSERT_NE(std::freopen("/dev/null", "r", stdin), nullptr);
  EXPECT_EQ(Run({"upgrade", image.c_str()}).code, ExitCode::kUsage);
  EXPECT_NE(Run({"info"}).out.find("factory"), std::string::npos);
}

TEST_F(UpgradeVerbTest, TheCameraComesBackWithTheNewFirmware) {
  Put("../image.bin", "firmware");
  const std::string image = (folder / "image.bin").string();
  const Ran ran = Run({"upgrade", "--yes", image.c_str()});
  EXPECT_EQ(ran.code, ExitCode::kDone) << ran.err;
  EXPECT_EQ(ran.out.find("factory"), std::string::npos);
  EXPECT_NE(Run({"info"}).out.find("firmware  " + ran.out), std::string::npos);
}

TEST_F(UpgradeVerbTest, AnEmptyOrMissingImageIsRefused) {
  Put("../empty.bin", "");
  const std::string image = (folder / "empty.bin").string();
  EXPECT_EQ(Run({"upgrade", "--yes", image.c_str()}).code, ExitCode::kFailed);
  EXPECT_EQ(Run({"upgrade", "--yes", "/nowhere"}).code, ExitCode::kFailed);
}

}  // namespace
}  // namespace apps

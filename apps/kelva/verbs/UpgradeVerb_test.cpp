#include <gmock/gmock.h>

#include <cstdio>

#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using testing::HasSubstr;

using UpgradeVerbTest = VerbTest;

TEST_F(UpgradeVerbTest, NothingIsSentWithoutAConfirmation) {
  Put("../image.bin", "\1firmware");
  const std::string image = (folder / "image.bin").string();
  ASSERT_NE(std::freopen("/dev/null", "r", stdin), nullptr);
  EXPECT_EQ(Run({"upgrade", image.c_str()}).code, ExitCode::kUsage);
  EXPECT_NE(Run({"info"}).out.find("factory"), std::string::npos);
}

TEST_F(UpgradeVerbTest, TheCameraComesBackWithTheNewFirmware) {
  Put("../image.bin", "\1firmware");
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

TEST_F(UpgradeVerbTest, OnlyTheImageThatWasMeantIsSent) {
  Put("../image.bin", "\1abc");
  const std::string image = (folder / "image.bin").string();
  const Ran other = Run({"upgrade", "--yes", "--sha1", "a9993e364706816aba3e25717850c26c9cd0d89d", image.c_str()});
  EXPECT_EQ(other.code, ExitCode::kFailed);
  EXPECT_THAT(other.err, HasSubstr("has the SHA-1 722a098c1efa81d8cbb20abe398068ed4109c66c"));
  EXPECT_EQ(Run({"upgrade", "--yes", "--sha1", "abc", image.c_str()}).code, ExitCode::kUsage);
  EXPECT_THAT(Run({"info"}).out, HasSubstr("factory"));
}

TEST_F(UpgradeVerbTest, TheBatteryIsComparedInTheCamerasOwnUnit) {
  Put("../image.bin", "\1abc");
  const std::string image = (folder / "image.bin").string();
  const Ran low = Run({"upgrade", "--yes", "--min-battery", "100.5", image.c_str()});
  EXPECT_EQ(low.code, ExitCode::kFailed);
  EXPECT_THAT(low.err, HasSubstr("battery level is 100, and --min-battery asks for 100.5"));
  for (const char* level : {"full", "", "nan", "1e40", "50%"}) {
    EXPECT_EQ(Run({"upgrade", "--yes", "--min-battery", level, image.c_str()}).code, ExitCode::kUsage) << level;
  }
  EXPECT_THAT(Run({"info"}).out, HasSubstr("factory"));
  EXPECT_EQ(Run({"upgrade", "--yes", "--min-battery", "100", image.c_str()}).code, ExitCode::kDone);
}

TEST_F(UpgradeVerbTest, APageSavedByMistakeIsNotSent) {
  Put("../image.bin", "<!DOCTYPE html><title>Sign in</title>");
  const std::string image = (folder / "image.bin").string();
  const Ran page = Run({"upgrade", "--yes", image.c_str()});
  EXPECT_EQ(page.code, ExitCode::kFailed);
  EXPECT_THAT(page.err, HasSubstr("is an HTML page"));
  EXPECT_THAT(Run({"info"}).out, HasSubstr("factory"));
  EXPECT_EQ(Run({"upgrade", "--yes", "--text", image.c_str()}).code, ExitCode::kDone);
}

}  // namespace
}  // namespace apps

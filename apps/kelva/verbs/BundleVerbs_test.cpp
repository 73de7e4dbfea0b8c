#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using BundleVerbsTest = VerbTest;

TEST_F(BundleVerbsTest, CrashLogsAreStoredAndThenDeletedOnTheCamera) {
  Put("CRASH/A.LOG", "boom");
  const std::string into = (folder / "logs").string();
  const Ran ran = Run({"crash-logs", "--into", into.c_str(), "--delete"});
  EXPECT_EQ(ran.code, ExitCode::kDone) << ran.err;
  EXPECT_EQ(Text(folder / "logs/A.LOG"), "boom");
  EXPECT_FALSE(Has("CRASH/A.LOG"));
}

TEST_F(BundleVerbsTest, CalibrationFilesAreStored) {
  Put("CALIB/C1", "cal");
  const std::string into = (folder / "cal").string();
  EXPECT_EQ(Run({"calibration", "--into", into.c_str()}).code, ExitCode::kDone);
  EXPECT_EQ(Text(folder / "cal/C1"), "cal");
}

}  // namespace
}  // namespace apps

#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using ReportVerbTest = VerbTest;

TEST_F(ReportVerbTest, EverythingIsInOneArchive) {
  Put("CRASH/A.LOG", "boom");
  Put("CALIB/C1", "cal");
  const std::string file = (folder / "report.tar").string();
  const Ran ran = Run({"report", file.c_str()});
  EXPECT_EQ(ran.code, ExitCode::kDone) << ran.err;
  const std::string archive = Text(file);
  for (const char* name : {"kelva-report/host.txt", "kelva-report/doctor.txt", "kelva-report/camera.txt",
                           "kelva-report/console.txt", "kelva-report/crash/A.LOG", "kelva-report/calibration/C1"}) {
    EXPECT_NE(archive.find(name), std::string::npos) << name;
  }
  EXPECT_NE(archive.find("boom"), std::string::npos);
  EXPECT_TRUE(Has("CRASH/A.LOG"));
  EXPECT_EQ(std::filesystem::status(file).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  EXPECT_NE(ran.err.find("only you may read it. It holds the camera's state, console log, crash logs and calibration"),
            std::string::npos)
      << ran.err;
  EXPECT_EQ(Run({"report", file.c_str()}).code, ExitCode::kFailed);
}

}  // namespace
}  // namespace apps

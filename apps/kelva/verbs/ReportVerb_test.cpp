#include <sys/stat.h>
#include <sys/xattr.h>

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

// user::rwx, user:65534:rwx, group::r-x, mask::rwx, other::---, as the kernel keeps it.
TEST_F(ReportVerbTest, AFoldersDefaultAclLetsNobodyElseRead) {
  const std::string acl(
      "\2\0\0\0"
      "\1\0\7\0\377\377\377\377"
      "\2\0\7\0\376\377\0\0"
      "\4\0\5\0\377\377\377\377"
      "\20\0\7\0\377\377\377\377"
      "\40\0\0\0\377\377\377\377",
      44);
  ASSERT_EQ(::setxattr(folder.c_str(), "system.posix_acl_default", acl.data(), acl.size(), 0), 0);
  const std::string file = (folder / "report.tar").string();
  EXPECT_EQ(Run({"report", file.c_str()}).code, ExitCode::kDone);
  struct stat status {};
  ASSERT_EQ(::stat(file.c_str(), &status), 0);
  // The bits of the group are the mask of what the ACL gives to others.
  EXPECT_EQ(status.st_mode & 0777, 0600U);
}

}  // namespace
}  // namespace apps

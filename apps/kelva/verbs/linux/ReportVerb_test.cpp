// A report in a folder with a default access list, which only Linux has.

#include <sys/stat.h>
#include <sys/xattr.h>

#include "apps/files/testing/Acl.h"
#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using ReportVerbOnLinuxTest = VerbTest;

TEST_F(ReportVerbOnLinuxTest, AFoldersDefaultAclLetsNobodyElseRead) {
  const std::string acl = kVersion + Entry(1, 7) + Entry(2, 7, 65534) + Entry(4, 5) + Entry(0x10, 7) + Entry(0x20, 0);
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

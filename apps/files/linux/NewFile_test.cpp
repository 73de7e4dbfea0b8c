// A folder's default access list, which only Linux has.

#include "apps/files/NewFile.h"

#include <gtest/gtest.h>
#include <sys/xattr.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "apps/files/testing/Acl.h"
#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

namespace fs = std::filesystem;

unsigned ModeOf(const fs::path& file) {
  return static_cast<unsigned>(fs::status(file).permissions());
}

std::string AclOf(const fs::path& file) {
  std::string acl(100, '\0');
  const ssize_t size = ::getxattr(file.c_str(), "system.posix_acl_access", acl.data(), acl.size());
  return acl.substr(0, size < 0 ? 0 : static_cast<std::size_t>(size));
}

TEST(NewFileOnLinuxTest, TheFoldersDefaultAclDecidesAboutNamedFilesButNotAboutPrivateOnes) {
  const base::ScratchFolder scratch;
  const fs::path& path = scratch.Path();
  const std::string acl = kVersion + Entry(1, 7) + Entry(2, 7, 65534) + Entry(4, 5) + Entry(0x10, 7) + Entry(0x20, 0);
  ASSERT_EQ(::setxattr(path.c_str(), "system.posix_acl_default", acl.data(), acl.size(), 0), 0);
  const TargetFolder folder = TargetFolder::Open(path);
  std::ofstream(path / "plain") << "";
  EXPECT_TRUE(NewFile(folder).TakeName("named"));
  EXPECT_EQ(ModeOf(path / "named"), ModeOf(path / "plain"));
  EXPECT_EQ(AclOf(path / "named"), AclOf(path / "plain"));
  EXPECT_EQ(AclOf(path / "named").size(), 44U);
  EXPECT_TRUE(NewFile(folder, Readers::kOwner).TakeName("private"));
  EXPECT_EQ(ModeOf(path / "private"), 0600U);
}

}  // namespace
}  // namespace apps

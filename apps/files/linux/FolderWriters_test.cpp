// Access lists, which only Linux keeps in this form.

#include "apps/files/FolderWriters.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <filesystem>
#include <fstream>

#include "apps/files/testing/Acl.h"
#include "base/FileDescriptor.h"
#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

namespace fs = std::filesystem;

class LimitToWritersTest : public testing::Test {
 protected:
  void Set(const char* list, const std::string& acl) const {
    ASSERT_EQ(::setxattr(scratch_.Path().c_str(), list, acl.data(), acl.size(), 0), 0);
  }
  /// A new file of the folder, limited.
  std::string Limited() const {
    const std::string path = (scratch_.Path() / "file").string();
    std::ofstream(path).close();
    const base::FileDescriptor folder(::open(scratch_.Path().c_str(), O_RDONLY | O_DIRECTORY));
    LimitToWriters(folder.Get(), "file");
    return path;
  }
  static std::string AclOf(const std::string& path) {
    std::string acl(100, '\0');
    const ssize_t size = ::getxattr(path.c_str(), "system.posix_acl_access", acl.data(), acl.size());
    return acl.substr(0, size < 0 ? 0 : static_cast<std::size_t>(size));
  }
  static unsigned ModeOf(const std::string& path) { return static_cast<unsigned>(fs::status(path).permissions()); }

  const base::ScratchFolder scratch_;
};

TEST_F(LimitToWritersTest, TheFoldersListDecides) {
  Set("system.posix_acl_access",
      kVersion + Entry(1, 7) + Entry(2, 7, 65534) + Entry(2, 5, 65533) + Entry(4, 5) + Entry(0x10, 7) + Entry(0x20, 0));
  EXPECT_EQ(AclOf(Limited()), kVersion + Entry(1, 6) + Entry(2, 6, 65534) + Entry(2, 0, 65533) + Entry(4, 0) +
                                  Entry(0x10, 6) + Entry(0x20, 0));
}

TEST_F(LimitToWritersTest, WhatNewFilesGetDoesNotDecide) {
  Set("system.posix_acl_default",
      kVersion + Entry(1, 7) + Entry(2, 5, 65534) + Entry(4, 5) + Entry(0x10, 7) + Entry(0x20, 5));
  ::chmod(scratch_.Path().c_str(), 0770);
  const std::string file = Limited();
  EXPECT_EQ(AclOf(file), "");
  EXPECT_EQ(ModeOf(file), 0660U);
}

}  // namespace
}  // namespace apps

#include "vcam/device/PrivateFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "base/testing/ScratchFolder.h"

namespace vcam {
namespace {

namespace fs = std::filesystem;

class PrivateFolderTest : public ::testing::Test {
 protected:
  PrivateFolderTest() { ::setenv("TMPDIR", scratch_.Path().c_str(), 1); }
  ~PrivateFolderTest() override { before_.empty() ? ::unsetenv("TMPDIR") : ::setenv("TMPDIR", before_.c_str(), 1); }
  fs::path Put(const std::string& name, mode_t mode) const {
    const fs::path folder = scratch_.Path() / name;
    fs::create_directories(folder / "DCIM");
    std::ofstream(folder / "DCIM" / "A.JPG") << "left";
    ::chmod(folder.c_str(), mode);
    return folder;
  }

  const std::string before_ = ::getenv("TMPDIR") != nullptr ? ::getenv("TMPDIR") : "";
  const base::ScratchFolder scratch_;
};

TEST_F(PrivateFolderTest, IsForItsOwnerAloneAndEndsWithTheObject) {
  fs::path path;
  {
    const PrivateFolder folder;
    path = folder.Path();
    EXPECT_EQ(path.parent_path(), scratch_.Path());
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_all);
    std::ofstream(path / "file") << "text";
  }
  EXPECT_FALSE(fs::exists(path));
}

TEST_F(PrivateFolderTest, WhatAKilledProcessLeftIsRemovedAtTheNextStart) {
  const fs::path left = Put("kelva-vcam-view-abcdef", 0700);
  const PrivateFolder folder;
  EXPECT_FALSE(fs::exists(left));
  EXPECT_TRUE(fs::exists(folder.Path()));
}

TEST_F(PrivateFolderTest, AFolderInUseStays) {
  const PrivateFolder first;
  const PrivateFolder second;
  EXPECT_TRUE(fs::exists(first.Path()));
  EXPECT_NE(first.Path(), second.Path());
}

TEST_F(PrivateFolderTest, FoldersOfOthersAndWithOtherNamesStay) {
  const fs::path other = Put("kelva-vcam-abcdef", 0700);
  const fs::path open = Put("kelva-vcam-view-shared", 0755);
  const fs::path target = Put("target", 0700);
  const fs::path longer = Put("kelva-vcam-view-photos-of-mine", 0700);
  fs::create_directory_symlink(target, scratch_.Path() / "kelva-vcam-view-linked");
  const PrivateFolder folder;
  for (const fs::path& path : {other, open, target, longer}) EXPECT_TRUE(fs::exists(path / "DCIM" / "A.JPG")) << path;
}

}  // namespace
}  // namespace vcam

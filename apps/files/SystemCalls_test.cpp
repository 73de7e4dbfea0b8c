#include "apps/files/SystemCalls.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "base/FileDescriptor.h"
#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

namespace fs = std::filesystem;

// Once with all calls that the system has, then without those for which there is a substitute.
class SystemCallsTest : public testing::TestWithParam<SystemCalls::Missing> {
 protected:
  void Put(const std::string& name, const std::string& text) const {
    fs::create_directories((path_ / name).parent_path());
    std::ofstream(path_ / name) << text;
  }
  std::string Text(const std::string& name) const {
    std::ifstream file(path_ / name);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  base::FileDescriptor Open(const std::string& path, int flags = O_RDONLY) {
    return base::FileDescriptor(calls_.Open(folder_.Get(), path, flags));
  }

  const base::ScratchFolder scratch_;
  const fs::path path_ = fs::path(scratch_.Path()) / "target";
  const bool made_ = fs::create_directory(path_);
  const base::FileDescriptor folder_{::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  SystemCalls calls_{GetParam()};
};

TEST_P(SystemCallsTest, NewFilesAndFoldersHaveThePermissionsThatTheUserLeaves) {
  const mode_t before = ::umask(0);
  const base::FileDescriptor made(calls_.Create(folder_.Get(), "file"));
  EXPECT_EQ(calls_.MakeFolder(folder_.Get(), "folder"), 0);
  ::umask(before);
  EXPECT_EQ(fs::status(path_ / "file").permissions(), static_cast<fs::perms>(0600));
  EXPECT_EQ(fs::status(path_ / "folder").permissions(), static_cast<fs::perms>(0777));
}

TEST_P(SystemCallsTest, WhatIsBelowTheFolderIsOpened) {
  Put("a/b/c", "deep");
  EXPECT_TRUE(Open("a/b/c"));
  EXPECT_TRUE(Open("a/b", O_RDONLY | O_DIRECTORY));
  for (const char* path : {"a/b/d", "a/d/c", "d"}) {
    EXPECT_EQ(calls_.Open(folder_.Get(), path, O_RDONLY), -1) << path;
    EXPECT_EQ(errno, ENOENT) << path;
  }
}

TEST_P(SystemCallsTest, NothingOnTheWayIsOpenedButFolders) {
  Put("file", "");
  ASSERT_EQ(::mkfifo((path_ / "pipe").c_str(), 0600), 0);  // opening it would wait for a writer
  for (const char* path : {"file/a", "pipe/a"}) {
    EXPECT_FALSE(Open(path)) << path;
    EXPECT_EQ(errno, ENOTDIR) << path;
  }
}

TEST_P(SystemCallsTest, TheErrorOfAnEarlierCallDoesNotCount) {
  int number = 0;
  for (const int error : {EPERM, ENOSYS, EINVAL, EOPNOTSUPP}) {
    const std::string name = std::to_string(++number);
    errno = error;
    EXPECT_TRUE(base::FileDescriptor(calls_.Create(folder_.Get(), name)));
    errno = error;
    EXPECT_EQ(calls_.Rename(folder_.Get(), name, "renamed" + name, false), 0);
    EXPECT_TRUE(fs::exists(path_ / ("renamed" + name)));
  }
}

TEST_P(SystemCallsTest, NoPathLeadsOutOfTheFolder) {
  Put("a/inside", "");
  Put("../outside", "");
  for (const char* path : {"../outside", "a/../../outside", "a/../../../etc/passwd", "/etc/passwd"}) {
    EXPECT_FALSE(Open(path)) << path;
    EXPECT_EQ(errno, EXDEV) << path;
  }
  EXPECT_EQ(calls_.Create(folder_.Get(), "../made"), -1);
  EXPECT_FALSE(fs::exists(path_ / "../made"));
}

TEST_P(SystemCallsTest, NoLinkIsFollowedWhereverItStands) {
  Put("a/inside", "");
  fs::create_symlink("a/inside", path_ / "file");
  fs::create_directory_symlink("a", path_ / "folder");
  fs::create_directory_symlink("..", path_ / "up");
  for (const char* path : {"file", "folder/inside", "up/target/a/inside"}) {
    EXPECT_FALSE(Open(path)) << path;
  }
  EXPECT_FALSE(Open("folder", O_RDONLY | O_DIRECTORY));
}

TEST_P(SystemCallsTest, NoOpenFileReachesAnotherProgram) {
  Put("a/inside", "");
  const base::FileDescriptor read = Open("a/inside");
  const base::FileDescriptor made(calls_.Create(folder_.Get(), "new"));
  EXPECT_EQ(::fcntl(read.Get(), F_GETFD), FD_CLOEXEC);
  EXPECT_EQ(::fcntl(made.Get(), F_GETFD), FD_CLOEXEC);
}

TEST_P(SystemCallsTest, AFileIsMadeOnlyWhereThereIsNone) {
  Put("taken", "mine");
  EXPECT_EQ(calls_.Create(folder_.Get(), "taken"), -1);
  EXPECT_EQ(errno, EEXIST);
  EXPECT_EQ(Text("taken"), "mine");
}

TEST_P(SystemCallsTest, AFreeNameIsTaken) {
  Put("old", "text");
  EXPECT_EQ(calls_.Rename(folder_.Get(), "old", "new", false), 0);
  EXPECT_EQ(Text("new"), "text");
  EXPECT_FALSE(fs::exists(path_ / "old"));
}

TEST_P(SystemCallsTest, ATakenNameStaysWhatItIs) {
  Put("old", "theirs");
  Put("file", "mine");
  fs::create_symlink("/nowhere", path_ / "link");
  for (const char* taken : {"file", "link"}) {
    EXPECT_EQ(calls_.Rename(folder_.Get(), "old", taken, false), -1) << taken;
    EXPECT_EQ(errno, EEXIST) << taken;
  }
  EXPECT_EQ(Text("file"), "mine");
  EXPECT_TRUE(fs::is_symlink(path_ / "link"));
  EXPECT_EQ(Text("old"), "theirs");
}

TEST_P(SystemCallsTest, ReplacingIsAskedFor) {
  Put("old", "new text");
  Put("file", "mine");
  EXPECT_EQ(calls_.Rename(folder_.Get(), "old", "file", true), 0);
  EXPECT_EQ(Text("file"), "new text");
}

TEST_P(SystemCallsTest, AFileIsTakenIntoAnotherFolder) {
  Put("from/file", "text");
  Put("to/other", "");
  const base::FileDescriptor from = Open("from", O_RDONLY | O_DIRECTORY);
  const base::FileDescriptor to = Open("to", O_RDONLY | O_DIRECTORY);
  EXPECT_EQ(calls_.Move(from.Get(), "file", to.Get()), 0);
  EXPECT_EQ(Text("to/file"), "text");
  EXPECT_FALSE(fs::exists(path_ / "from/file"));
  EXPECT_EQ(calls_.Move(from.Get(), "file", to.Get()), -1);
}

TEST_P(SystemCallsTest, AFileThatHasGoneHasNoNameToGive) {
  EXPECT_EQ(calls_.Rename(folder_.Get(), "gone", "new", false), -1);
  EXPECT_EQ(errno, ENOENT);
}

INSTANTIATE_TEST_SUITE_P(Systems, SystemCallsTest,
                         testing::Values(SystemCalls::Missing{}, SystemCalls::Missing{.openBeneath = ENOSYS},
                                         SystemCalls::Missing{.renameNoReplace = EINVAL},
                                         SystemCalls::Missing{.renameNoReplace = ENOSYS},
                                         SystemCalls::Missing{.renameNoReplace = ENOTSUP},
                                         SystemCalls::Missing{.renameNoReplace = EINVAL, .hardLinks = EPERM},
                                         SystemCalls::Missing{.renameNoReplace = EINVAL, .hardLinks = EOPNOTSUPP},
                                         SystemCalls::Missing{.renameNoReplace = EINVAL, .hardLinks = ENOSYS}));

TEST(SystemCallsTest, WhatReachesNoFileIsAnError) {
  SystemCalls calls;
  const int none = -1;
  EXPECT_EQ(calls.Write(none, "x"), -1);
  for (const auto& call : {&SystemCalls::Flush, &SystemCalls::FlushFolder}) {
    errno = 0;
    EXPECT_EQ((calls.*call)(none), -1);
    EXPECT_EQ(errno, EBADF);
  }
  EXPECT_EQ(calls.MakeFolder(none, "a"), -1);
  EXPECT_EQ(calls.Commit([] { return -1; }), -1);
  EXPECT_EQ(calls.Rename(none, "a", "b", true), -1);
}

}  // namespace
}  // namespace apps

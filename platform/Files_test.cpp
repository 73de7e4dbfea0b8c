#include "platform/Files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>

#include "base/FileDescriptor.h"
#include "base/testing/ScratchFolder.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

int Open(int folder, const std::string& path, int flags, mode_t mode) {
  return OpenBeneath(folder, path, flags, mode);
}

template <int kError>
int Fail(int, const char*, int, mode_t) {
  errno = kError;
  return -1;
}

class FilesTest : public testing::Test {
 protected:
  void Put(const std::string& name, const std::string& text) const {
    fs::create_directories((path_ / name).parent_path());
    std::ofstream(path_ / name) << text;
  }
  std::string Text(const std::string& name) const {
    std::ifstream file(path_ / name);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  const base::ScratchFolder scratch_;
  const fs::path path_ = fs::canonical(scratch_.Path());
  const base::FileDescriptor folder_{::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
};

TEST_F(FilesTest, WhatIsBelowAFolderIsOpenedAndClosedOnExec) {
  Put("a/b", "text");
  for (const auto& open : {Open, WalkBeneath}) {
    const base::FileDescriptor file(open(folder_.Get(), "a/b", O_RDONLY, 0));
    ASSERT_TRUE(file);
    EXPECT_EQ(::fcntl(file.Get(), F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(PathOf(file.Get()), (path_ / "a/b").string());
  }
}

TEST_F(FilesTest, NothingLeadsOutOfTheFolder) {
  Put("a/inside", "");
  fs::create_directory_symlink("a", path_ / "link");
  for (const auto& open : {Open, WalkBeneath}) {
    for (const char* path : {"..", "a/../..", "/etc/passwd"}) {
      EXPECT_EQ(open(folder_.Get(), path, O_RDONLY, 0), -1) << path;
      EXPECT_EQ(errno, EXDEV) << path;
    }
    EXPECT_EQ(open(folder_.Get(), "link/inside", O_RDONLY, 0), -1);
    EXPECT_EQ(open(folder_.Get(), "link", O_RDONLY, 0), -1);
  }
}

TEST_F(FilesTest, AnEmptyPathNamesNothing) {
  for (const auto& open : {Open, WalkBeneath}) {
    EXPECT_EQ(open(folder_.Get(), "", O_RDONLY, 0), -1);
    EXPECT_EQ(errno, ENOENT);
  }
}

TEST_F(FilesTest, MoreSlashesThanOneAndOneAtTheEndSayNothingMore) {
  Put("a/b", "text");
  for (const auto& open : {Open, WalkBeneath}) {
    const base::FileDescriptor file(open(folder_.Get(), "a//b", O_RDONLY, 0));
    EXPECT_TRUE(file);
    const base::FileDescriptor below(open(folder_.Get(), "a/", O_RDONLY, 0));
    EXPECT_TRUE(below);
    EXPECT_EQ(open(folder_.Get(), "a/b/", O_RDONLY, 0), -1);
    EXPECT_EQ(errno, ENOTDIR);
  }
}

TEST_F(FilesTest, ALinkIsToldFromAFileInThePlaceOfAFolder) {
  Put("a/inside", "");
  fs::create_directory_symlink("a", path_ / "link");
  for (const auto& open : {Open, WalkBeneath}) {
    for (const char* path : {"link", "link/inside"}) {
      EXPECT_EQ(open(folder_.Get(), path, O_RDONLY | O_DIRECTORY, 0), -1);
      EXPECT_EQ(errno, ELOOP) << path;
    }
    EXPECT_EQ(open(folder_.Get(), "a/inside/x", O_RDONLY, 0), -1);
    EXPECT_EQ(errno, ENOTDIR);
  }
}

TEST_F(FilesTest, ANewFileGetsTheModeThatWasAskedFor) {
  for (const auto& open : {Open, WalkBeneath}) {
    const base::FileDescriptor file(open(folder_.Get(), "new", O_RDWR | O_CREAT | O_EXCL, 0600));
    ASSERT_TRUE(file);
    EXPECT_EQ(fs::status(path_ / "new").permissions(), static_cast<fs::perms>(0600));
    fs::remove(path_ / "new");
  }
}

TEST_F(FilesTest, WhereTheKernelHasNoSuchCallEachComponentIsOpened) {
  Put("a/b", "text");
  EXPECT_TRUE(base::FileDescriptor(OpenBeneath(folder_.Get(), "a/b", O_RDONLY, 0, Fail<ENOSYS>)));
  EXPECT_TRUE(base::FileDescriptor(OpenBeneath(folder_.Get(), "a/b", O_RDONLY, 0, Fail<EPERM>)));
  EXPECT_EQ(OpenBeneath(folder_.Get(), "a/b", O_RDONLY, 0, Fail<EACCES>), -1);
  EXPECT_EQ(errno, EACCES);
}

TEST_F(FilesTest, ATakenNameIsNotReplaced) {
  Put("old", "theirs");
  Put("taken", "mine");
  EXPECT_EQ(RenameNoReplace(folder_.Get(), "old", "taken"), -1);
  EXPECT_EQ(errno, EEXIST);
  EXPECT_EQ(Text("taken"), "mine");
  EXPECT_EQ(RenameNoReplace(folder_.Get(), "old", "new"), 0);
  EXPECT_EQ(Text("new"), "theirs");
}

TEST_F(FilesTest, FilesAndFoldersAreFlushed) {
  Put("file", "text");
  const base::FileDescriptor file(::open((path_ / "file").c_str(), O_RDWR | O_CLOEXEC));
  BeginFlush(file.Get());
  EXPECT_EQ(Flush(file.Get()), 0);
  EXPECT_EQ(FlushFolder(folder_.Get()), 0);
  for (const auto& flush : {Flush, FlushFolder}) {
    EXPECT_EQ(flush(-1), -1);
    EXPECT_EQ(errno, EBADF);
  }
}

TEST_F(FilesTest, TheModeOfANewFileFollowsTheUmaskAndNothingIsLeft) {
  const mode_t before = ::umask(027);
  EXPECT_EQ(ModeOfNewFile(folder_.Get()), mode_t{0640});
  ::umask(before);
  EXPECT_TRUE(fs::is_empty(path_));
}

TEST_F(FilesTest, TheTimesOfAFileAreKnown) {
  Put("file", "");
  const std::string path = path_ / "file";
  const timespec times[] = {{0, UTIME_OMIT}, {1'000'000, 5000}};
  ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(ContentChanged(status).tv_sec, 1'000'000);
  EXPECT_EQ(ContentChanged(status).tv_nsec, 5000);
  EXPECT_GT(StatusChanged(status).tv_sec, 1'000'000);
}

TEST_F(FilesTest, WhatIsNotOpenHasNoPath) {
  EXPECT_EQ(PathOf(-1), "");
}

}  // namespace
}  // namespace platform

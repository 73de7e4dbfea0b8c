#include "apps/files/FolderLock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>

#include "apps/commandline/Failure.h"
#include "base/testing/ScratchFolder.h"
#include "platform/Files.h"

namespace apps {
namespace {

namespace fs = std::filesystem;

class FolderLockTest : public ::testing::Test {
 protected:
  TargetFolder Folder() const { return TargetFolder::Open(scratch_.Path().string()); }
  fs::path LockPath() const { return scratch_.Path() / kLockName; }
  ExitCode CodeOfAnother() const {
    try {
      const FolderLock lock(Folder());
      return ExitCode::kDone;
    } catch (const Failure& failure) {
      return failure.Code();
    }
  }
  mode_t ModeIn(mode_t folderMode) const {
    ::chmod(scratch_.Path().c_str(), folderMode);
    fs::remove(LockPath());
    const FolderLock lock(Folder());
    struct stat status {};
    EXPECT_EQ(::stat(LockPath().c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, ::geteuid());
    return status.st_mode & 07777U;
  }

  const base::ScratchFolder scratch_;
};

TEST_F(FolderLockTest, KeepsASecondRunOutUntilTheFirstHasEnded) {
  {
    const FolderLock lock(Folder());
    EXPECT_EQ(CodeOfAnother(), ExitCode::kBusy);
  }
  EXPECT_EQ(CodeOfAnother(), ExitCode::kDone);
}

TEST_F(FolderLockTest, IsNotHeldByAReaderWhoLocksTheFolder) {
  const TargetFolder reader = Folder();
  ASSERT_EQ(::flock(reader.Fd(), LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(CodeOfAnother(), ExitCode::kDone);
}

TEST_F(FolderLockTest, CanBeOpenedByThoseAloneWhoMayWriteIntoTheFolder) {
  const mode_t before = ::umask(0);
  EXPECT_EQ(ModeIn(0755), 0600U);
  EXPECT_EQ(ModeIn(0700), 0600U);
  ::umask(0077);
  EXPECT_EQ(ModeIn(0775), 0660U);
  EXPECT_EQ(ModeIn(0777), 0666U);
  ::umask(before);
}

TEST_F(FolderLockTest, LeavesALockThatIsThereAsItIs) {
  { const FolderLock lock(Folder()); }
  ::chmod(scratch_.Path().c_str(), 0777);
  const FolderLock lock(Folder());
  struct stat status {};
  EXPECT_EQ(::stat(LockPath().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

TEST_F(FolderLockTest, IsNotMisledByTheErrorOfAnEarlierCall) {
  errno = EWOULDBLOCK;
  EXPECT_EQ(CodeOfAnother(), ExitCode::kDone);
}

TEST_F(FolderLockTest, FollowsNoLinkAndTakesPlainFilesOnly) {
  fs::create_symlink(scratch_.Path() / "elsewhere", LockPath());
  EXPECT_EQ(CodeOfAnother(), ExitCode::kFailed);
  EXPECT_FALSE(fs::exists(scratch_.Path() / "elsewhere"));
  std::ofstream(scratch_.Path() / "elsewhere").close();
  EXPECT_EQ(CodeOfAnother(), ExitCode::kFailed);
  fs::remove(LockPath());
  ASSERT_EQ(::mkfifo(LockPath().c_str(), 0600), 0);
  EXPECT_EQ(CodeOfAnother(), ExitCode::kFailed);
}

TEST_F(FolderLockTest, SaysWhatIsInTheWay) {
  const auto why = [this] {
    try {
      const FolderLock lock(Folder());
    } catch (const Failure& failure) {
      return std::string(failure.what());
    }
    return std::string();
  };
  {
    const FolderLock lock(Folder());
    EXPECT_EQ(why(),
              "Another `kelva sync` is at work in " + scratch_.Path().string() + "; wait until it has finished.");
  }
  fs::remove(LockPath());
  fs::create_symlink("elsewhere", LockPath());
  EXPECT_EQ(why(), "Cannot open the lock file " + LockPath().string() + ": Too many levels of symbolic links.");
  fs::remove(LockPath());
  ASSERT_EQ(::mkfifo(LockPath().c_str(), 0600), 0);
  EXPECT_EQ(why(), LockPath().string() + " is not a plain file; move it away.");
}

TEST_F(FolderLockTest, IsNotHandedToAnotherProgram) {
  const FolderLock lock(Folder());
  int found = 0;
  for (const auto& entry : fs::directory_iterator("/dev/fd")) {
    const int descriptor = std::stoi(entry.path().filename());
    if (platform::PathOf(descriptor) != fs::canonical(LockPath())) continue;
    ++found;
    EXPECT_EQ(::fcntl(descriptor, F_GETFD), FD_CLOEXEC);
  }
  EXPECT_EQ(found, 1);
}

TEST_F(FolderLockTest, AListIsLimitedToThoseWhoMayWriteIntoTheFolderToo) {
  const fs::path list = scratch_.Path() / "list";
  std::ofstream(list).close();
  const auto modeIn = [&](mode_t folderMode) {
    ::chmod(scratch_.Path().c_str(), folderMode);
    ::chmod(list.c_str(), 0644);
    LimitToWriters(Folder(), "list");
    struct stat status {};
    EXPECT_EQ(::stat(list.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, ::geteuid());
    return static_cast<unsigned>(fs::status(list).permissions());
  };
  EXPECT_EQ(modeIn(0755), 0600U);
  EXPECT_EQ(modeIn(0775), 0660U);
  EXPECT_EQ(modeIn(0757), 0606U);
}

}  // namespace
}  // namespace apps

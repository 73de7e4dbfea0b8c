#include "src/ui/linux/KelvaHelper/SessionLock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "base/testing/ScratchFolder.h"

namespace helper {
namespace {

using Outcome = SessionLock::Outcome;

SessionIdentity Session(const std::string& bus, const std::string& virtualBus = "") {
  return {"/run/user/1000", "/users/me", "desk", bus, virtualBus};
}

TEST(LockPath, IsTheSameWhetherOrNotTheBusAddressNamesItsDaemonsStart) {
  EXPECT_EQ(LockPath(Session("unix:path=/run/user/1000/bus")),
            LockPath(Session("unix:path=/run/user/1000/bus,guid=0123456789abcdef0123456789abcdef")));
}

TEST(LockPath, WithoutAnAddressItIsThatOfTheUserManagersBus) {
  EXPECT_EQ(LockPath(Session("")), LockPath(Session("unix:path=/run/user/1000/bus")));
}

TEST(LockPath, DiffersBetweenSessionsWithBusesOfTheirOwn) {
  EXPECT_NE(LockPath(Session("unix:abstract=/tmp/dbus-A")), LockPath(Session("unix:abstract=/tmp/dbus-B")));
}

TEST(LockPath, ACopyThatWatchesAVirtualBusIsNoRivalOfTheRealOne) {
  EXPECT_NE(LockPath(Session("unix:path=/run/user/1000/bus", "/tmp/bus")),
            LockPath(Session("unix:path=/run/user/1000/bus")));
}

TEST(LockPath, LiesInTheRunTimeFolderUnderAPlainName) {
  const std::filesystem::path path = LockPath(Session("unix:path=/a/b;tcp:host=x,port=1"));
  EXPECT_EQ(path.parent_path(), "/run/user/1000");
  EXPECT_EQ(path.filename().string().rfind("kelva-helper-", 0), 0U);
  EXPECT_EQ(path.extension(), ".lock");
}

TEST(LockPath, WithoutARunTimeFolderItLiesInAFolderOfTheUsersOwn) {
  const auto path = [](const char* home, const char* machine) { return LockPath({"", home, machine, "", ""}); };
  EXPECT_EQ(path("/users/me", "desk").rfind("/users/me/.cache/kelva-helper/", 0), 0U);
  EXPECT_NE(path("/users/me", "desk"), path("/users/me", "laptop"));
}

class SessionLockTest : public testing::Test {
 protected:
  const base::ScratchFolder scratch_;
  const std::filesystem::path folder_ = scratch_.Path();
  const std::filesystem::path path_ = folder_ / "agent.lock";
};

TEST_F(SessionLockTest, SecondTakerLearnsWhoHoldsIt) {
  const SessionLock first(path_);
  const SessionLock second(path_);
  EXPECT_EQ(first.Result(), Outcome::kHeld);
  EXPECT_EQ(second.Result(), Outcome::kHeldByAnother);
  EXPECT_EQ(second.Rival(), ::getpid());
}

TEST_F(SessionLockTest, IsFreeAgainWhenItsHolderEnds) {
  { const SessionLock first(path_); }
  EXPECT_EQ(SessionLock(path_).Result(), Outcome::kHeld);
}

TEST_F(SessionLockTest, AnUnreadableNoteOfTheHolderIsNoNumber) {
  const SessionLock first(path_);
  std::ofstream(path_, std::ios::trunc) << "nonsense";
  const SessionLock second(path_);
  EXPECT_EQ(second.Result(), Outcome::kHeldByAnother);
  EXPECT_EQ(second.Rival(), 0);
}

TEST_F(SessionLockTest, AFolderThatIsMissingIsAFailureWithItsReason) {
  const SessionLock lock(folder_ / "missing" / "agent.lock");
  EXPECT_EQ(lock.Result(), Outcome::kFailed);
  EXPECT_EQ(lock.Error(), ENOENT);
}

TEST_F(SessionLockTest, AFolderInWhichOthersMayWriteIsRefused) {
  for (const mode_t mode : {0777U, 01777U, 0770U}) {
    ASSERT_EQ(::chmod(folder_.c_str(), mode), 0);
    EXPECT_EQ(MakeLockFolder(path_, folder_), EPERM);
  }
}

TEST_F(SessionLockTest, AFolderOfAnotherUserIsRefused) {
  // The device folder belongs to root; as root the test gives its own folder away.
  const bool isRoot = ::geteuid() == 0 && ::chown(folder_.c_str(), 65534, 65534) == 0;
  EXPECT_EQ(MakeLockFolder(isRoot ? path_.string() : "/dev/agent.lock", folder_), EPERM);
}

TEST_F(SessionLockTest, AFolderThatCannotBeMadeIsRefused) {
  std::ofstream(folder_ / "file") << "";
  EXPECT_EQ(MakeLockFolder(folder_ / "file" / "agent.lock", folder_), EPERM);
  EXPECT_EQ(MakeLockFolder(folder_ / "file" / "agent" / "a.lock", folder_), ENOTDIR);
}

TEST_F(SessionLockTest, AMissingFolderIsMadeForThisUserAlone) {
  const std::string path = folder_ / "home" / ".cache" / "agent" / "a.lock";
  const mode_t before = ::umask(0);
  EXPECT_EQ(MakeLockFolder(path, folder_ / "home"), ENOENT) << "a home folder is not made";
  EXPECT_FALSE(std::filesystem::exists(folder_ / "home"));
  std::filesystem::create_directory(folder_ / "home");
  EXPECT_EQ(MakeLockFolder(path, ""), ENOENT);
  EXPECT_EQ(MakeLockFolder(path, folder_ / "hom"), ENOENT);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "home" / ".cache"));
  EXPECT_EQ(MakeLockFolder(path, folder_ / "home"), 0);
  ::umask(before);
  struct stat status;
  ASSERT_EQ(::stat((folder_ / "home" / ".cache" / "agent").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0700U);
  EXPECT_EQ(SessionLock(path).Result(), Outcome::kHeld);
}

TEST_F(SessionLockTest, ALinkInPlaceOfTheFileIsNotFollowed) {
  std::filesystem::create_symlink(folder_ / "elsewhere", path_);
  EXPECT_EQ(SessionLock(path_).Error(), ELOOP);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "elsewhere"));
}

TEST_F(SessionLockTest, SomethingOtherThanAPlainFileIsRefused) {
  ASSERT_EQ(::mkfifo(path_.c_str(), 0600), 0);
  EXPECT_EQ(SessionLock(path_).Error(), EPERM);
}

TEST_F(SessionLockTest, TheFileIsPrivateAndKeptFromCleaners) {
  const SessionLock lock(path_);
  struct stat status;
  ASSERT_EQ(::stat(path_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 01600U);
}

TEST(CurrentSession, IsReadFromTheEnvironment) {
  ::setenv("XDG_RUNTIME_DIR", "/run/user/7", 1);
  ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/run/user/7/bus", 1);
  ::setenv("HOME", "/users/seven", 1);
  const SessionIdentity session = CurrentSession("/tmp/bus");
  EXPECT_EQ(session.runtimeDirectory, "/run/user/7");
  EXPECT_EQ(session.busAddress, "unix:path=/run/user/7/bus");
  EXPECT_EQ(session.virtualBus, "/tmp/bus");
  EXPECT_EQ(session.home, "/users/seven");
  EXPECT_NE(session.machine, "");
}

TEST(CurrentSession, MissingVariablesAreEmpty) {
  ::unsetenv("XDG_RUNTIME_DIR");
  ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
  EXPECT_EQ(CurrentSession("").runtimeDirectory, "");
  EXPECT_EQ(CurrentSession("").busAddress, "");
}

}  // namespace
}  // namespace helper

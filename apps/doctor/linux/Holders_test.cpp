#include "apps/doctor/linux/Holders.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>

namespace apps::doctor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<int> Read(const std::string& text) {
  std::istringstream locks(text);
  return LockHolders(locks, {0, 5, 6789});
}

TEST(LockHoldersTest, TheHolderOfTheFilesLockIsFound) {
  EXPECT_THAT(Read("1: POSIX  ADVISORY  WRITE 77 00:05:6789 0 EOF\n"
                   "2: FLOCK  ADVISORY  WRITE 1234 00:05:6789 0 EOF\n"
                   "3: FLOCK  ADVISORY  WRITE 55 00:05:6790 0 EOF\n"
                   "4: FLOCK  ADVISORY  WRITE 56 08:05:6789 0 EOF\n"),
              ElementsAre(1234));
}

TEST(LockHoldersTest, AProcessThatWaitsForTheLockIsNamedToo) {
  EXPECT_THAT(Read("2: FLOCK  ADVISORY  WRITE 1234 00:05:6789 0 EOF\n"
                   "2: -> FLOCK  ADVISORY  WRITE 1235 00:05:6789 0 EOF\n"),
              ElementsAre(1234, 1235));
}

TEST(LockHoldersTest, AProcessOfAnotherNamespaceIsLeftOut) {
  EXPECT_THAT(Read("2: FLOCK  ADVISORY  WRITE -1 00:05:6789 0 EOF\n"), IsEmpty());
}

TEST(LockHoldersTest, LinesThatCannotBeReadArePassedOver) {
  EXPECT_THAT(Read("\nrubbish\n2: FLOCK ADVISORY WRITE x y z\n"), IsEmpty());
}

class HoldersTest : public testing::Test {
 protected:
  HoldersTest() { ::close(::mkstemp(file_)); }
  ~HoldersTest() override { ::unlink(file_); }

  // A child that has the file open, and locked where asked, until `release` is closed.
  pid_t StartHolder(bool lock, int& release) {
    int ready[2];
    int go[2];
    EXPECT_EQ(::pipe(ready), 0);
    EXPECT_EQ(::pipe(go), 0);
    const pid_t child = ::fork();
    if (child == 0) {
      ::close(go[1]);
      const int fd = ::open(file_, O_RDWR);
      if (lock) ::flock(fd, LOCK_EX);
      char byte = 0;
      if (::write(ready[1], "r", 1) == 1 && ::read(go[0], &byte, 1) == 0) ::_exit(0);
      ::_exit(1);
    }
    char byte = 0;
    EXPECT_EQ(::read(ready[0], &byte, 1), 1);
    ::close(ready[0]);
    ::close(ready[1]);
    ::close(go[0]);
    release = go[1];
    return child;
  }

  static void End(pid_t child, int release) {
    ::close(release);
    ::waitpid(child, nullptr, 0);
  }

  char file_[32] = "/tmp/kelva-holders-XXXXXX";
};

TEST_F(HoldersTest, AProcessThatHasTheFileOpenIsNamed) {
  int release = -1;
  const pid_t child = StartHolder(false, release);
  EXPECT_THAT(HoldersOf(file_), ElementsAre(Holder{child, "doctor_test"}));
  End(child, release);
  EXPECT_THAT(HoldersOf(file_), IsEmpty());
}

TEST_F(HoldersTest, AProcessThatHasItOpenAndLockedIsNamedOnce) {
  int release = -1;
  const pid_t child = StartHolder(true, release);
  EXPECT_THAT(HoldersOf(file_), ElementsAre(Holder{child, "doctor_test"}));
  End(child, release);
}

TEST_F(HoldersTest, WhoWaitsForTheLockIsNotNamed) {
  int release = -1;
  int leave = -1;
  const pid_t holder = StartHolder(true, release);
  const pid_t waiter = StartHolder(false, leave);
  EXPECT_THAT(HoldersOf(file_), ElementsAre(Holder{holder, "doctor_test"}));
  End(waiter, leave);
  End(holder, release);
}

TEST_F(HoldersTest, ThisProcessItselfIsNoHolder) {
  const int fd = ::open(file_, O_RDWR);
  EXPECT_THAT(HoldersOf(file_), IsEmpty());
  ::close(fd);
}

TEST_F(HoldersTest, AFileThatIsNotThereIsHeldByNobody) {
  EXPECT_THAT(HoldersOf("/nowhere/sg3"), IsEmpty());
}

}  // namespace
}  // namespace apps::doctor

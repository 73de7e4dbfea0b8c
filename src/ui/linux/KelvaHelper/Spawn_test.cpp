#include "src/ui/linux/KelvaHelper/Spawn.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "base/FileDescriptor.h"

namespace helper {
namespace {

/// Runs a shell line through Spawn and returns all that it wrote to descriptor 9; ends when the last holder of the
/// pipe has ended.
std::string OutputOf(const std::string& line) {
  int ends[2];
  EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  base::FileDescriptor reader(ends[0]);
  {
    base::FileDescriptor writer(ends[1]);
    base::FileDescriptor inherited(::dup2(writer.Get(), 9));
    EXPECT_EQ(Spawn({"/bin/sh", "-c", line}), 0);
  }
  std::string output;
  char buffer[512];
  ssize_t got = 0;
  while ((got = ::read(reader.Get(), buffer, sizeof buffer)) > 0) output.append(buffer, static_cast<std::size_t>(got));
  return output;
}

class SpawnTest : public testing::Test {
 protected:
  void SetUp() override { ::sigaction(SIGCHLD, nullptr, &childAction_); }
  void TearDown() override {
    // A child that outlived its output must not become a zombie of the next test.
    while (::waitpid(-1, nullptr, 0) > 0) continue;
    ::sigaction(SIGCHLD, &childAction_, nullptr);
  }
  struct sigaction childAction_ = {};
};

TEST_F(SpawnTest, RunsTheProgramWithItsArguments) {
  ForgetChildren();
  EXPECT_EQ(OutputOf("printf %s hello >&9"), "hello");
}

TEST_F(SpawnTest, MissingProgramIsReportedToTheCaller) {
  ForgetChildren();
  EXPECT_EQ(Spawn({"/nonexistent/program"}), ENOENT);
}

TEST_F(SpawnTest, ProgramThatMayNotBeRunIsReportedToTheCaller) {
  ForgetChildren();
  EXPECT_EQ(Spawn({"/dev/null"}), EACCES);
}

TEST_F(SpawnTest, ForgottenChildrenLeaveNoZombie) {
  ForgetChildren();
  OutputOf("exit 3");
  // Waits for children still running; with none left, and none kept as a zombie, the answer is "no child".
  const int answer = ::waitpid(-1, nullptr, 0) < 0 ? errno : 0;
  EXPECT_EQ(answer, ECHILD);
}

TEST_F(SpawnTest, ChildHasNoSignalBlockedOrIgnored) {
  ForgetChildren();
  sigset_t blocked;
  sigset_t before;
  ::sigfillset(&blocked);
  ::sigprocmask(SIG_BLOCK, &blocked, &before);
  const std::string output = OutputOf("grep -E '^Sig(Blk|Ign):' /proc/self/status >&9");
  ::sigprocmask(SIG_SETMASK, &before, nullptr);
  // Signals 32 and 33 are the C library's own; it ignores them in every program that it spawns.
  EXPECT_THAT(output, testing::AnyOf("SigBlk:\t0000000000000000\nSigIgn:\t0000000180000000\n",
                                     "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n"));
}

TEST_F(SpawnTest, ChildLeadsASessionOfItsOwn) {
  ForgetChildren();
  // Field 6 of stat is the session, which has the number of its leader.
  const std::string output = OutputOf("read pid rest < /proc/$$/stat; set -- $rest; echo \"$pid $5\" >&9");
  const std::size_t space = output.find(' ');
  ASSERT_NE(space, std::string::npos);
  EXPECT_EQ(output.substr(0, space) + "\n", output.substr(space + 1));
}

}  // namespace
}  // namespace helper

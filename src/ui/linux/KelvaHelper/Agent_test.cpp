#include "src/ui/linux/KelvaHelper/Agent.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <stdexcept>

#include "base/testing/ScratchFolder.h"
#include "darwin/registry/Registry.h"
#include "src/ui/linux/KelvaHelper/CameraSource.h"
#include "src/ui/linux/KelvaHelper/SessionLock.h"

namespace {

/// A source that has nothing, or fails with a sentence of its own.
class Source : public darwin::RegistrySource {
 public:
  explicit Source(std::string error) : error_(std::move(error)) {}
  void Start(darwin::Registry&) override {
    if (!error_.empty()) throw std::runtime_error(error_);
  }
  int Descriptor() const override { return -1; }
  void Dispatch(darwin::Registry&) override {}

 private:
  std::string error_;
};

std::string watchedBus;
std::function<void()> onChoice;

}  // namespace

// In place of the real choice of back ends, which this program does not link.
void helper::UseCamerasOf(const std::string& virtualBus) {
  watchedBus = virtualBus;
  onChoice();
}

namespace helper {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

struct Outcome {
  int code;
  std::string output;
  std::string errors;
};

class AgentTest : public testing::Test {
 protected:
  AgentTest() {
    ::setenv("XDG_RUNTIME_DIR", folder_.c_str(), 1);
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    UseSource("");
  }

  static void UseSource(const std::string& error) {
    onChoice = [error] { darwin::Registry::Shared().SetSource(std::make_unique<Source>(error)); };
  }

  static Outcome RunWith(const std::vector<std::string>& arguments) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int code = RunAgent(arguments);
    return {code, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
  }

  const base::ScratchFolder scratch_;
  const std::filesystem::path folder_ = scratch_.Path();
};

TEST_F(AgentTest, WatchesUntilASignalAndEndsWithZero) {
  // Blocked and waiting: the agent finds it as soon as its run loop looks.
  sigset_t stop;
  ::sigemptyset(&stop);
  ::sigaddset(&stop, SIGTERM);
  ::sigprocmask(SIG_BLOCK, &stop, nullptr);
  ::raise(SIGTERM);
  const Outcome outcome = RunWith({"--virtual", "/some/bus"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(watchedBus, "/some/bus");
  EXPECT_EQ(outcome.output,
            "kelva-helper: Watching; each camera that is attached from now on starts " KELVA_DESKTOP_ID ".\n");
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(AgentTest, BusThatCannotBeReachedIsOneSentenceAndCodeOne) {
  onChoice = [] { throw std::runtime_error("Nobody serves /some/bus; start one."); };
  const Outcome outcome = RunWith({"--virtual", "/some/bus"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.errors, "kelva-helper: Cameras cannot be watched: Nobody serves /some/bus; start one.\n");
}

TEST_F(AgentTest, RefusedRegistrationIsOneSentenceWithTheReasonOfTheBackEnd) {
  UseSource("The machine has no devices to look at.");
  const Outcome outcome = RunWith({});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.errors, "kelva-helper: Cameras cannot be watched: The machine has no devices to look at.\n");
}

TEST_F(AgentTest, SecondCopyOfASessionSaysWhoIsThereAndEndsWithZero) {
  const SessionLock first(LockPath(CurrentSession("")));
  const Outcome outcome = RunWith({});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.output, "kelva-helper: Another copy (process " + std::to_string(::getpid()) +
                                ") already serves this login session, so this one ends.\n");
}

TEST_F(AgentTest, LockThatCannotBeMadeIsOneSentenceThatSaysWhatToDo) {
  ::setenv("XDG_RUNTIME_DIR", (folder_ / "missing").c_str(), 1);
  const Outcome outcome = RunWith({});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.errors,
              MatchesRegex("kelva-helper: The lock file .*/missing/kelva-helper-[0-9a-f]+.lock cannot be "
                           "used .No such file or directory.; set XDG_RUNTIME_DIR to a folder of your "
                           "own.\n"));
}

TEST_F(AgentTest, HelpAndVersionArePrintedAndNothingIsWatched) {
  onChoice = [] { FAIL() << "a back end was chosen"; };
  EXPECT_THAT(RunWith({"--help"}).output, HasSubstr("Usage: kelva-helper"));
  EXPECT_EQ(RunWith({"--version"}).output, "kelva-helper " KELVA_VERSION "\n");
}

TEST_F(AgentTest, WrongArgumentIsAComplaintAndCodeTwo) {
  const Outcome outcome = RunWith({"--virtual"});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.errors, "kelva-helper: --virtual needs the path of a virtual bus's socket.\n");
}

}  // namespace
}  // namespace helper

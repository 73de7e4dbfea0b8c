#include "apps/commandline/Guard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <string>

#include "apps/commandline/Aborts.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Supervisor.h"
#include "base/FileDescriptor.h"
#include "platform/Sockets.h"

namespace apps {
namespace {

using testing::AllOf;
using testing::ExitedWithCode;
using testing::HasSubstr;
using testing::Not;

void SayOnStandardError(const std::string& sentence) {
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, sentence.data(), sentence.size());
}

// Ends the process that does the work; what Run itself returns to is that process.
[[noreturn]] void RunAndExit(const std::function<int(Guard&)>& work) {
  TakeOverSignals();
  try {
    ::_exit(Guard::Run(work, SayOnStandardError));
  } catch (const Failure& failure) {
    SayOnStandardError(failure.what());
    ::_exit(static_cast<int>(failure.Code()));
  }
}

bool IsOpen(const Guard& guard, const std::string& item) {
  return guard.FateOf(item) == Guard::Fate::kUnknown;
}

int WorkThatAbortsInTwoItems(Guard& guard) {
  CatchAborts("", "", -1);
  for (const std::string item : {"a", "b", "c", "d"}) {
    if (!IsOpen(guard, item)) continue;
    guard.Begin(item, item);
    if (item == "b" || item == "d") std::abort();
    ++guard.Shared()[0];
    guard.Shared()[1] += 10;
    guard.End();
  }
  // a and c once in each of the three processes that came so far: 1 + 2 + 2.
  return guard.Shared()[0] == 5 && guard.Shared()[1] == 50 ? 6 : 99;
}

TEST(GuardDeathTest, WorkGoesOnWithoutTheItemsInWhichItAborted) {
  EXPECT_EXIT(RunAndExit(WorkThatAbortsInTwoItems), ExitedWithCode(6), "");
}

TEST(GuardDeathTest, AnAbortBetweenItemsEndsTheWork) {
  const auto work = [](Guard& guard) {
    CatchAborts("kelva: aborted\n", "", -1);
    guard.Begin("a", "A");
    guard.End();
    std::abort();
    return 0;
  };
  EXPECT_EXIT(RunAndExit(work), ExitedWithCode(1), "kelva: aborted");
}

TEST(GuardDeathTest, ASignalToTheToolReachesTheWorker) {
  const auto work = [](Guard&) {
    ::kill(::getppid(), SIGTERM);
    sigset_t none;
    sigemptyset(&none);
    ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
    while (true) ::pause();
    return 0;
  };
  EXPECT_EXIT(RunAndExit(work), ExitedWithCode(128 + SIGTERM), "");
}

// The worker of a tool that was killed must not go on with the camera. Its end closes the pipe.
TEST(GuardDeathTest, AToolThatIsKilledTakesItsWorkerAlong) {
  const auto work = [](Guard&) {
    ::kill(::getppid(), SIGKILL);
    sigset_t none;
    sigemptyset(&none);
    ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
    while (true) ::pause();
    return 0;
  };
  std::array<int, 2> ends{};
  ASSERT_EQ(platform::Pipe(ends), 0);
  const base::FileDescriptor read(ends[0]);
  EXPECT_EXIT(RunAndExit(work), testing::KilledBySignal(SIGKILL), "");
  ::close(ends[1]);
  pollfd gone{read.Get(), POLLIN, 0};
  constexpr int kPatienceMs = 10'000;
  EXPECT_EQ(::poll(&gone, 1, kPatienceMs), 1);
}

TEST(GuardDeathTest, WorkThatAbortsWithoutEndIsAFailureInWords) {
  const auto work = [](Guard& guard) {
    CatchAborts("", "", -1);
    guard.Begin("always", "");
    std::abort();
    return 0;
  };
  EXPECT_EXIT(RunAndExit(work), ExitedWithCode(1), "1024 files");
}

TEST(GuardDeathTest, AnAbortAfterWhichAnotherProcessGoesOnIsNotTheLastWord) {
  const auto work = [](Guard& guard) {
    if (!IsOpen(guard, "a")) return 6;
    CatchAborts("kelva: aborted\n", "", -1);
    guard.Begin("a", "A");
    std::abort();
  };
  EXPECT_EXIT(RunAndExit(work), ExitedWithCode(6), Not(HasSubstr("aborted")));
}

TEST(GuardDeathTest, AnItemIsReportedOnceHoweverManyProcessesMeetIt) {
  const auto work = [](Guard& guard) {
    CatchAborts("", "", -1);
    if (guard.TakeReport("bad")) SayOnStandardError("[bad]");
    if (!guard.WasReported("bad") || guard.WasReported("good")) return 99;
    for (const std::string item : {"a", "b", "c"}) {
      if (!IsOpen(guard, item)) continue;
      guard.Begin(item, item);
      std::abort();
    }
    return 6;
  };
  EXPECT_EXIT(RunAndExit(work), ExitedWithCode(6), AllOf(HasSubstr("[bad]"), Not(HasSubstr("[bad][bad]"))));
}

TEST(GuardDeathTest, AProcessThatAbortsReportsNothingMore) {
  const auto work = [](Guard& guard) {
    CatchAborts("", "", -1);
    if (!IsOpen(guard, "a")) return !guard.WasReported("b") && guard.TakeReport("b") ? 6 : 99;
    guard.Begin("a", "A");
    // What another thread does while the handler removes the files that it writes.
    if (!Guard::NoteAbort() || guard.TakeReport("b")) return 98;
    std::abort();
  };
  EXPECT_EXIT(RunAndExit(work), ExitedWithCode(6), "");
}

TEST(GuardDeathTest, AWorkerThatIsKilledIsSaidAndItsItemTriedOnceMore) {
  const auto work = [](Guard& guard) {
    if (!IsOpen(guard, "a")) return 99;
    guard.Begin("a", "I:\\A.JPG");
    if (guard.TakeReport("first")) ::kill(::getpid(), SIGKILL);
    return 0;
  };
  EXPECT_EXIT(
      RunAndExit(work), ExitedWithCode(0),
      "^The process that read I:.A\\.JPG was killed \\(signal 9, Killed\\), as happens when memory runs out; another "
      "one tries that file once more\\.$");
}

TEST(GuardDeathTest, AnItemAtWhichTwoWorkersWereKilledIsLeftOut) {
  const auto work = [](Guard& guard) {
    if (guard.FateOf("a") == Guard::Fate::kKilledTwice) return guard.FateOf("b") == Guard::Fate::kUnknown ? 6 : 99;
    guard.Begin("a", "A");
    return ::kill(::getpid(), SIGUSR1);
  };
  EXPECT_EXIT(RunAndExit(work), ExitedWithCode(6), "A was killed \\(signal 10, User defined signal 1\\); another");
}

// As when a run deletes what it has fetched: the last file was read long ago.
TEST(GuardDeathTest, AWorkerThatIsKilledBetweenItemsBlamesNone) {
  const auto work = [](Guard& guard) {
    if (!IsOpen(guard, "a")) return 99;
    { const InItem item(&guard, "a", "I:\\A.JPG"); }
    ++guard.Shared()[0];
    if (guard.Shared()[0] <= 2) ::kill(::getpid(), SIGKILL);
    return 6;
  };
  EXPECT_EXIT(
      RunAndExit(work), ExitedWithCode(6),
      AllOf(HasSubstr("The process that did the work was killed (signal 9, Killed), as happens when memory runs "
                      "out; another one goes on."),
            Not(HasSubstr("A.JPG"))));
}

TEST(GuardDeathTest, AThirdWorkerThatIsKilledBetweenItemsIsAFailureInWords) {
  const auto work = [](Guard& guard) {
    ++guard.Shared()[0];
    { const InItem item(&guard, "a", "A"); }
    if (guard.Shared()[0] <= 3) ::kill(::getpid(), SIGKILL);
    return 99;
  };
  EXPECT_EXIT(RunAndExit(work), ExitedWithCode(1), "the same command goes on from there");
}

TEST(GuardDeathTest, AnItemIsOverHoweverItsWorkEnds) {
  const auto work = [](Guard& guard) {
    CatchAborts("kelva: aborted\n", "", -1);
    try {
      const InItem item(&guard, "a", "A");
      throw 1;
    } catch (int) {
    }
    std::abort();
    return 0;
  };
  EXPECT_EXIT(RunAndExit(work), ExitedWithCode(1), "kelva: aborted");
}

TEST(GuardDeathTest, AWorkerThatIsKilledBeforeItsFirstItemIsAFailureInWords) {
  const auto work = [](Guard&) { return ::kill(::getpid(), SIGKILL); };
  EXPECT_EXIT(RunAndExit(work), ExitedWithCode(1), "^The process that did the work was killed \\(signal 9, Killed\\)");
}

TEST(GuardDeathTest, WorkersThatAreKilledWithoutEndAreAFailureInWords) {
  const auto work = [](Guard& guard) {
    ++guard.Shared()[0];
    guard.Begin(std::to_string(guard.Shared()[0]), "A");
    return ::kill(::getpid(), SIGKILL);
  };
  EXPECT_EXIT(RunAndExit(work), ExitedWithCode(1), "The process that did the work was killed");
}

TEST(GuardDeathTest, ALongNameIsCut) {
  const auto work = [](Guard& guard) {
    guard.Begin("a", std::string(100'000, 'n'));
    if (guard.TakeReport("first")) ::kill(::getpid(), SIGKILL);
    return 0;
  };
  EXPECT_EXIT(RunAndExit(work), ExitedWithCode(0), "read n{255} was killed");
}

TEST(GuardDeathTest, MoreReportsThanThereIsRoomForAreMadeAgain) {
  const auto work = [](Guard& guard) {
    for (int i = 0; i < 20'000; ++i) guard.TakeReport(std::to_string(i));
    return guard.WasReported("1") && !guard.WasReported("19999") && guard.TakeReport("19999") ? 0 : 99;
  };
  EXPECT_EXIT(RunAndExit(work), ExitedWithCode(0), "");
}

}  // namespace
}  // namespace apps

#include "apps/commandline/Guard.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include "apps/commandline/Aborts.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Supervisor.h"

namespace apps {
namespace {

using testing::ExitedWithCode;

// Ends the process that does the work; what Run itself returns to is that process.
[[noreturn]] void RunAndExit(const std::function<int(Guard&)>& work) {
  TakeOverSignals();
  ::_exit(Guard::Run(work));
}

int WorkThatAbortsInTwoItems(Guard& guard) {
  CatchAborts("", "", -1);
  for (const std::string item : {"a", "b", "c", "d"}) {
    if (guard.IsBad(item)) continue;
    guard.Begin(item);
    if (item == "b" || item == "d") std::abort();
    guard.Count(1, 10);
    guard.End();
  }
  // a and c once in each of the three processes that came so far: 1 + 2 + 2.
  return guard.Files() == 5 && guard.Bytes() == 50 ? 6 : 99;
}

TEST(GuardDeathTest, WorkGoesOnWithoutTheItemsInWhichItAborted) {
  EXPECT_EXIT(RunAndExit(WorkThatAbortsInTwoItems), ExitedWithCode(6), "");
}

TEST(GuardDeathTest, AnAbortBetweenItemsEndsTheWork) {
  const auto work = [](Guard& guard) {
    CatchAborts("kelva: aborted\n", "", -1);
    guard.Begin("a");
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

TEST(GuardDeathTest, WorkThatAbortsWithoutEndIsAFailureInWords) {
  const auto work = [](Guard& guard) {
    CatchAborts("", "", -1);
    guard.Begin("always");
    std::abort();
    return 0;
  };
  const auto run = [work] {
    TakeOverSignals();
    try {
      Guard::Run(work);
    } catch (const Failure& failure) {
      ::_exit(std::string(failure.what()).find("1024 files") != std::string::npos ? 42 : 43);
    }
    ::_exit(44);
  };
  EXPECT_EXIT(run(), ExitedWithCode(42), "");
}

}  // namespace
}  // namespace apps

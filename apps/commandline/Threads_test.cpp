// A reporter that several threads use at once. ThreadSanitizer says whether they may.
#include <fcntl.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>

#include "apps/commandline/Guard.h"
#include "apps/commandline/Reporter.h"
#include "apps/commandline/Stop.h"
#include "apps/commandline/Supervisor.h"
#include "base/FileDescriptor.h"
#include "base/testing/Crowd.h"

namespace apps {
namespace {

constexpr int kRounds = 3000;

class Threads : public testing::Test {
 protected:
  void Report(ReportStyle style) {
    Reporter reporter("kelva", nowhere_.Get(), style);
    using Clock = std::chrono::steady_clock;
    // Each turn is an hour after the last one, so that every one is due.
    const auto turn = [&reporter, now = Clock::now()]() mutable {
      reporter.TakeProgressTurn(now += std::chrono::hours(1));
    };
    const base::Crowd crowd(
        kRounds, {[&] { reporter.Note("Two files."); }, [&] { reporter.Error("It is gone.", ExitCode::kGone); }, turn,
                  [&] {
                    reporter.Overwrite("50 %");
                    reporter.Event(Json::Object().Set("done", 5));
                    reporter.Clear();
                  }});
  }

  const base::FileDescriptor nowhere_{::open("/dev/null", O_WRONLY | O_CLOEXEC)};
};

TEST_F(Threads, MayReportToAPersonAtOnce) {
  Report({.terminal = true});
}

TEST_F(Threads, MayReportToAScriptAtOnce) {
  Report({.json = true});
}

TEST_F(Threads, MayTakeTurnsAtOnce) {
  using Clock = std::chrono::steady_clock;
  Reporter reporter("kelva", nowhere_.Get(), {.json = true});
  // Each turn is an hour after the last one, so that every one is due.
  const auto take = [&reporter, now = Clock::now()]() mutable {
    reporter.TakeProgressTurn(now += std::chrono::hours(1));
  };
  const base::Crowd crowd(20 * kRounds, {take, take});
}

TEST_F(Threads, MayAskAWorkerToStopThatIsAboutToSleep) {
  Stop stop;
  int woken = 0;
  const base::Crowd crowd(kRounds,
                          {[&] { stop.Request(); }, [&] { const Stop::WakeUp wakeUp(stop, [&] { ++woken; }); }});
}

TEST(ThreadsDeathTest, MayReportTheSameItemsAndOneOfThemDoes) {
  const auto work = [](Guard& guard) {
    std::atomic<int> reports = 0;
    const auto take = [&, item = 0]() mutable { reports += guard.TakeReport(std::to_string(++item)) ? 1 : 0; };
    const auto ask = [&, item = 0]() mutable {
      guard.WasReported(std::to_string(++item));
      guard.FateOf(std::to_string(item));
    };
    { const base::Crowd crowd(kRounds, {take, take, ask}); }
    return reports == kRounds ? 42 : 1;
  };
  const auto run = [&work] {
    TakeOverSignals();
    // Not _exit, at which ThreadSanitizer would have no say.
    std::exit(Guard::Run(work, [](const std::string&) {}));
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(42), "");
}

}  // namespace
}  // namespace apps

// A reporter that several threads use at once. ThreadSanitizer says whether they may.
#include <fcntl.h>
#include <gtest/gtest.h>

#include <chrono>

#include "apps/commandline/Reporter.h"
#include "apps/commandline/Stop.h"
#include "base/FileDescriptor.h"
#include "base/testing/Crowd.h"

namespace apps {
namespace {

constexpr int kRounds = 3000;

class Threads : public testing::Test {
 protected:
  void Report(ReportStyle style) {
    Reporter reporter("kelva", nowhere_.Get(), style);
    const auto now = [] { return std::chrono::steady_clock::now(); };
    const base::Crowd crowd(
        kRounds, {[&] { reporter.Note("Two files."); }, [&] { reporter.Error("It is gone.", ExitCode::kGone); },
                  [&] {
                    if (reporter.IsProgressDue(now())) reporter.TakeProgressTurn(now());
                    reporter.Overwrite("50 %");
                    reporter.Event(Json::Object().Set("done", 5));
                  },
                  [&] {
                    reporter.TakeProgressTurn(now() + std::chrono::hours(1));
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

TEST_F(Threads, MayAskAWorkerToStopThatIsAboutToSleep) {
  Stop stop;
  int woken = 0;
  const base::Crowd crowd(kRounds,
                          {[&] { stop.Request(); }, [&] { const Stop::WakeUp wakeUp(stop, [&] { ++woken; }); }});
}

}  // namespace
}  // namespace apps

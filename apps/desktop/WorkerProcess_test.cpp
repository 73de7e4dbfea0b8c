#include "apps/desktop/WorkerProcess.h"

#include <QJsonObject>
#include <QThread>
#include <optional>

#include "apps/desktop/testing/ScriptedWorker.h"
#include "apps/desktop/testing/TestApplication.h"

namespace desktop {
namespace {

class WorkerProcessTest : public WindowTest {
 protected:
  std::unique_ptr<WorkerProcess> Start(const QString& script) {
    return std::make_unique<WorkerProcess>("/bin/sh", QStringList{"-c", script}, Hearing());
  }
  Listener Hearing() {
    return {[this](const QJsonObject& event) { events_.append(event["event"].toString()); },
            [this](ExitCode exit) { exit_ = exit; }};
  }

  QStringList events_;
  std::optional<ExitCode> exit_;
};

TEST_F(WorkerProcessTest, HearsBothStreamsAndSkipsWhatIsNoEvent) {
  const auto worker = Start("echo '{\"event\":\"a\"}'; echo noise; echo '{\"event\":\"b\"}' >&2; exit 5");
  ASSERT_TRUE(Await([&] { return exit_.has_value(); }));
  events_.sort();
  EXPECT_EQ(events_, QStringList({"a", "b"}));
  EXPECT_EQ(exit_, ExitCode::kGone);
}

TEST_F(WorkerProcessTest, CommandsArrive) {
  const auto worker = Start("read -r line; printf '{\"event\":\"%s\"}\\n' \"$line\"");
  worker->Send({"go"});
  ASSERT_TRUE(Await([&] { return exit_.has_value(); }));
  EXPECT_EQ(events_, QStringList("go"));
}

TEST_F(WorkerProcessTest, ATabALineFeedOrALetterBeyondAsciiCannotEndAWord) {
  const auto worker = Start("IFS= read -r line; printf '{\"event\":\"%s\"}\\n' \"$(echo \"$line\" | tr '\\t' '|')\"");
  worker->Send({"target", QStringLiteral("/a\tb\n%\u00e9"), ""});
  ASSERT_TRUE(Await([&] { return exit_.has_value(); }));
  EXPECT_EQ(events_, QStringList("target|%2Fa%09b%0A%25%C3%A9|"));
}

TEST_F(WorkerProcessTest, AProgramThatIsNotThereIsADeath) {
  WorkerProcess worker("/nowhere/worker", {}, Hearing());
  worker.Send({"go"});
  ASSERT_TRUE(Await([&] { return exit_.has_value(); }));
  EXPECT_EQ(exit_, kCrashed);
}

TEST_F(WorkerProcessTest, ASignalIsADeath) {
  const auto worker = Start("kill -9 $$");
  ASSERT_TRUE(Await([&] { return exit_.has_value(); }));
  EXPECT_EQ(exit_, kCrashed);
}

TEST_F(WorkerProcessTest, AHangingWorkerIsEndedWithItsChildren) {
  QElapsedTimer spent;
  auto worker = Start("trap '' TERM; sleep 1000 & echo '{\"event\":\"up\"}'; while :; do sleep 1000; done");
  ASSERT_TRUE(Await([&] { return !events_.isEmpty(); }));
  spent.start();
  worker.reset();
  EXPECT_LT(spent.elapsed(), 50) << "the window waits for nobody";
  WorkerProcess::EndAll();
  EXPECT_LT(spent.elapsed(), 800);
}

TEST_F(WorkerProcessTest, AWorkerThatHeedsTheEndOfItsInputIsNotKilled) {
  auto worker = Start("trap 'echo no' TERM; cat >/dev/null; exit 0");
  worker.reset();
  QElapsedTimer spent;
  spent.start();
  WorkerProcess::EndAll();
  EXPECT_LT(spent.elapsed(), 600);
}

}  // namespace
}  // namespace desktop

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/time.h>
#include <time.h>

#include <atomic>

#include "darwin/udev/UdevSource.h"
#include "src/wifi/Camera.h"
#include "tests/umockdev/MockMachine.h"
#include "vcam/camera/testing/TestSupport.h"

namespace mock {
namespace {

std::atomic<long> alarms = 0;

/// A thousand signals a second to this thread, without a restart of the calls that they interrupt.
class SignalStorm {
 public:
  SignalStorm() {
    struct sigaction action {};
    action.sa_handler = [](int) { ++alarms; };
    ::sigaction(SIGALRM, &action, &before_);
    sigevent event{};
    event.sigev_notify = SIGEV_THREAD_ID;
    event.sigev_signo = SIGALRM;
    event._sigev_un._tid = ::gettid();
    ::timer_create(CLOCK_MONOTONIC, &event, &timer_);
    constexpr itimerspec kMillisecond{{0, 1000000}, {0, 1000000}};
    ::timer_settime(timer_, 0, &kMillisecond, nullptr);
  }
  ~SignalStorm() {
    ::timer_delete(timer_);
    ::sigaction(SIGALRM, &before_, nullptr);
  }
  SignalStorm(const SignalStorm&) = delete;
  SignalStorm& operator=(const SignalStorm&) = delete;

 private:
  struct sigaction before_ {};
  timer_t timer_{};
};

TEST(SignalStormTest, EveryOfTenThousandCommandsReachesTheCameraOnce) {
  constexpr int kCommands = 10000;
  vcam::test::ScratchStorage storage;
  MockMachine machine;
  darwin::Registry::Shared().SetSource(darwin::MakeUdevSource());
  const auto device = std::make_shared<vcam::VirtualCamera>(storage.CameraOptions("K100"));
  const auto door = std::make_shared<SgDoor>(device);
  machine.Plug({.serial = "K100"});
  machine.Attach(0, door);
  const auto camera = Camera::GetCamera("K100", "", false, false);
  ASSERT_TRUE(camera->Open());
  const int doneBefore = camera->GetDoneCmdCount();
  const auto before = door->Commands();
  {
    SignalStorm storm;
    for (int i = 0; i < kCommands; ++i) {
      ASSERT_TRUE(camera->IsReady());
    }
  }
  EXPECT_EQ(door->Commands() - before, static_cast<std::uint64_t>(kCommands));
  EXPECT_GT(alarms, kCommands / 20);  // it did storm: a command takes a fraction of a millisecond
  EXPECT_EQ(camera->GetDoneCmdCount() - doneBefore, kCommands + 1);  // the first question counts too
}

}  // namespace
}  // namespace mock

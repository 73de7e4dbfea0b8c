// One camera that several threads command, arm and unplug at once. ThreadSanitizer says whether they may.
#include <gtest/gtest.h>

#include "base/testing/Crowd.h"
#include "vcam/camera/testing/CameraFixture.h"

namespace vcam {
namespace {

using test::Ask;
using test::SendText;
using test::Tell;

constexpr int kRounds = 3000;

class Threads : public test::CameraFixture {};

TEST_F(Threads, CommandsRunOneAtATimeWhileFaultsAreArmed) {
  const auto command = [this] {
    Tell(*camera_, {0xC2, 0, 0x02});
    Ask(*camera_, {0xC4, 0, 0x01}, 64);
  };
  const auto arm = [this] { camera_->Arm({FaultKind::kFail}); };
  const base::Crowd crowd(kRounds, {command, command, arm, arm, [this] { camera_->Disarm(); }});
}

TEST_F(Threads, OneOfThemHasTheSession) {
  std::atomic<int> holders = 0;
  const auto hold = [&] {
    if (!camera_->StartSession()) return;
    EXPECT_EQ(++holders, 1);
    --holders;
    camera_->EndSession();
  };
  const base::Crowd crowd(kRounds, {hold, hold, hold});
}

TEST_F(Threads, AnUnplugReachesAllThatWaitForIt) {
  const base::Crowd crowd(1, {[this] { EXPECT_TRUE(camera_->WaitForUnplug(std::chrono::minutes(1))); },
                              [this] {
                                while (!camera_->Gone()) Tell(*camera_, {0xC2, 0, 0x02});
                              },
                              [this] { camera_->Unplug(); }, [this] { camera_->Unplug(); }});
}

}  // namespace
}  // namespace vcam

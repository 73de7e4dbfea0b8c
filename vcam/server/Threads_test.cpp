// A worker and its queue of replies between several threads. ThreadSanitizer says whether they may.
#include <gtest/gtest.h>

#include "base/testing/Crowd.h"
#include "vcam/camera/testing/TestSupport.h"
#include "vcam/server/Worker.h"

namespace vcam::server {
namespace {

constexpr int kRounds = 3000;

class Threads : public testing::Test {
 protected:
  const test::ScratchStorage scratch_{};
  const std::shared_ptr<VirtualCamera> camera_ = std::make_shared<VirtualCamera>(scratch_.CameraOptions());
  const std::shared_ptr<CompletionQueue> completions_ = std::make_shared<CompletionQueue>();
};

TEST_F(Threads, JobsComeFromSeveralAndAreAskedAfterMeanwhile) {
  Worker worker(camera_, completions_);
  const auto put = [&worker] { worker.Put({1, 2, 9, test::Block({0xC6, 0, 0x06}), {}}); };
  const base::Crowd crowd(kRounds, {put, put, [&worker] { worker.Idle(); }, [this] { completions_->TakeAll(); }});
}

TEST_F(Threads, AWorkerEndsAtAnyMoment) {
  const auto live = [this] {
    Worker worker(camera_, completions_);
    worker.Put({1, 2, 9, test::Block({0xC6, 0, 0x06}), {}});
  };
  const base::Crowd crowd(kRounds / 10, {live, live, [this] { completions_->TakeAll(); }});
}

TEST_F(Threads, NoReplyIsLost) {
  std::atomic<int> taken = 0;
  const auto put = [this] { completions_->Put({}); };
  const auto take = [&] { taken += static_cast<int>(completions_->TakeAll().size()); };
  { const base::Crowd crowd(kRounds, {put, put, take, take}); }
  take();
  EXPECT_EQ(taken, 2 * kRounds);
}

}  // namespace
}  // namespace vcam::server

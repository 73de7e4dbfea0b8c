#include "vcam/server/Worker.h"

#include <gmock/gmock.h>
#include <poll.h>

#include "vcam/camera/testing/TestSupport.h"

namespace vcam::server {
namespace {

TEST(Worker, RunsJobsInOrderWithTheirOwnData) {
  const test::ScratchStorage scratch;
  const auto camera = std::make_shared<VirtualCamera>(scratch.CameraOptions());
  const auto completions = std::make_shared<CompletionQueue>();
  Worker worker(camera, completions);
  for (std::uint32_t tag = 0; tag < 100; ++tag) {
    Job job{1, tag, 9, test::Block({0xC0, 0, 0xFF}), test::Text(std::to_string(tag))};
    job.command.direction = wire::Direction::kToCamera;
    job.command.length = static_cast<std::uint32_t>(job.data.size());
    worker.Put(std::move(job));
  }
  std::vector<Completion> all;
  while (all.size() < 100) {
    pollfd readable{completions->Descriptor(), POLLIN, 0};
    ASSERT_EQ(::poll(&readable, 1, 10'000), 1);
    for (Completion& completion : completions->TakeAll()) all.push_back(std::move(completion));
  }
  for (std::uint32_t tag = 0; tag < 100; ++tag) {
    EXPECT_EQ(all[tag].tag, tag);
    EXPECT_TRUE(all[tag].reply.Good());
  }
  EXPECT_THAT(test::AsText(test::Ask(*camera, {0xC6, 0, 2}, 4096).data), testing::HasSubstr("> 98\n> 99\n"));
}

TEST(Worker, EndsWithJobsThatNobodyRan) {
  const test::ScratchStorage scratch;
  const auto completions = std::make_shared<CompletionQueue>();
  Worker worker(std::make_shared<VirtualCamera>(scratch.CameraOptions()), completions);
  for (std::uint32_t tag = 0; tag < 1000; ++tag) worker.Put({1, tag, 9, test::Block({0xC0, 0, 0x0D}), {}});
}

}  // namespace
}  // namespace vcam::server

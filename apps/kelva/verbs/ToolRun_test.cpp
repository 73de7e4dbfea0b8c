#include "apps/kelva/verbs/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace apps {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int kTerminated = 128 + 15;

// The program is this test, which understands the options of GoogleTest.
class ToolRunTest : public testing::Test {
 protected:
  ToolRun Start(const std::vector<std::string>& words) {
    return ToolRun(
        words, [this](std::string_view line) { output_.emplace_back(line); },
        [this](std::string_view line) { messages_.emplace_back(line); });
  }
  static void ReadSome(ToolRun& run) {
    std::vector<pollfd> watched;
    run.AddTo(watched);
    EXPECT_EQ(watched.size(), 2U);
    constexpr int kPatienceMs = 30'000;
    ::poll(watched.data(), watched.size(), kPatienceMs);
    run.Read();
  }

  std::vector<std::string> output_;
  std::vector<std::string> messages_;
};

TEST_F(ToolRunTest, ItsOutputComesLineByLine) {
  ToolRun run = Start({"--gtest_filter=ToolRunTest.*", "--gtest_list_tests"});
  while (run.IsOpen()) ReadSome(run);
  EXPECT_EQ(run.Wait(), 0);
  EXPECT_THAT(output_, Contains("ToolRunTest."));
  EXPECT_THAT(output_, Contains("  ItsOutputComesLineByLine"));
  EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(ToolRunTest, ItEndsWhenItIsAskedTo) {
  ToolRun run = Start({"--gtest_filter=OwnJsonTest.*", "--gtest_repeat=-1"});
  while (output_.empty()) ReadSome(run);
  run.AskToStop();
  while (run.IsOpen()) ReadSome(run);
  EXPECT_EQ(run.Wait(), kTerminated);
}

TEST_F(ToolRunTest, ItEndsWithItsOwner) {
  {
    ToolRun run = Start({"--gtest_filter=OwnJsonTest.*", "--gtest_repeat=-1"});
    while (output_.empty()) ReadSome(run);
  }
  EXPECT_THAT(output_.front(), HasSubstr("gtest"));
}

}  // namespace
}  // namespace apps

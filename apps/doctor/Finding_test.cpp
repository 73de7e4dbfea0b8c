#include "apps/doctor/Finding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace apps::doctor {
namespace {

TEST(FindingTest, EveryConditionHasAWordOfItsOwn) {
  std::vector<std::string_view> words;
  for (int i = 0; i <= static_cast<int>(Condition::kLeftMount); ++i) words.push_back(WordOf(static_cast<Condition>(i)));
  std::sort(words.begin(), words.end());
  EXPECT_EQ(std::adjacent_find(words.begin(), words.end()), words.end());
  EXPECT_EQ(std::count(words.begin(), words.end(), "unknown"), 0);
}

TEST(FindingTest, ObstaclesAreWhatNothingEndsSoon) {
  std::vector<Finding> all;
  for (const Condition condition : {Condition::kWell, Condition::kNoDevice, Condition::kHeld, Condition::kNoUdev,
                                    Condition::kNoPermission, Condition::kBadCamera}) {
    all.push_back({condition, "K1", "", "", ""});
  }
  const std::vector<Finding> obstacles = Obstacles(all);
  ASSERT_EQ(obstacles.size(), 2U);
  EXPECT_EQ(obstacles[0].condition, Condition::kNoPermission);
  EXPECT_EQ(obstacles[1].condition, Condition::kBadCamera);
}

TEST(FindingTest, AFindingInJsonHasAllThatIsKnown) {
  EXPECT_EQ(InJson({{Condition::kNoUdev, "K1", "No udev.", "sudo x", "Wait."}}).Text(),
            R"([{"condition":"no-udev","harmless":true,"serial":"K1","sentence":"No udev.","command":"sudo x",)"
            R"("advice":"Wait."}])");
}

}  // namespace
}  // namespace apps::doctor

#include "apps/commandline/Discretion.h"

#include <gtest/gtest.h>

#include <vector>

namespace apps {
namespace {

constexpr Option kCommon[] = {{"serial", 's', "SERIAL", ""}, {"timeout", 0, "SECONDS", ""}};
constexpr Option kSetting[] = {{"setting", 0, "0|1", ""}};
constexpr Verb kVerbs[] = {{"wifi name", "", {}, {}, "", "", {}, nullptr},
                           {"wifi passphrase", "", {}, kSetting, "", "", {}, nullptr, false, {}, {}, true}};
const Program kProgram = {.name = "kelva",
                          .version = "",
                          .summary = "",
                          .description = "",
                          .verbs = kVerbs,
                          .options = kCommon,
                          .environment = {}};

std::string Said(const std::vector<const char*>& arguments, const std::string& sentence) {
  return Discreet(sentence, kProgram, arguments);
}

TEST(DiscretionTest, WhatStandsWhereASecretMayStandIsHidden) {
  const std::vector<std::vector<const char*>> lines = {{"wifi", "passphrase", "hunter2secret"},
                                                       {"wifi", "passphrase", "--setting", "hunter2secret"},
                                                       {"wifi", "passphrase", "--setting=hunter2secret"},
                                                       {"wifi", "passphrase", "-shunter2secret"},
                                                       {"--timeout", "hunter2secret", "wifi", "passphrase"},
                                                       {"wifi", "--hunter2secret", "passphrase"},
                                                       {"wifi", "passphrase", "--hunter2secret=x"}};
  for (const auto& line : lines) {
    EXPECT_EQ(Said(line, "\"hunter2secret\" is not what hunter2secret should be."),
              "\"(hidden)\" is not what (hidden) should be.");
  }
}

TEST(DiscretionTest, WhatMakesASentenceUsefulStays) {
  EXPECT_EQ(Said({"wifi", "passphrase", "--setting", "1", "--timeout", "10"}, "Setting 1 of 10; see --setting, wifi."),
            "Setting 1 of 10; see --setting, wifi.");
}

TEST(DiscretionTest, BytesThatATerminalWouldObeyAreFoundAsTheyAreShown) {
  EXPECT_EQ(Said({"wifi", "passphrase",
                  "ab\x1b"
                  "cd"},
                 "Not ab\\x1bcd."),
            "Not (hidden).");
}

TEST(DiscretionTest, AWordThatIsPartOfAnotherLeavesNothingBehind) {
  EXPECT_EQ(Said({"wifi", "passphrase", "hunter", "hunter2secret"}, "hunter2secret, hunter"), "(hidden), (hidden)");
}

TEST(DiscretionTest, OtherCommandsSayWhatWasTyped) {
  EXPECT_EQ(Said({"wifi", "name", "hunter2secret"}, "hunter2secret"), "hunter2secret");
  EXPECT_EQ(Said({"passphrase", "wifi", "hunter2secret"}, "hunter2secret"), "hunter2secret");
}

}  // namespace
}  // namespace apps

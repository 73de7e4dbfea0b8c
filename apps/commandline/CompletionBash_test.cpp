#include "apps/commandline/Completion.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

namespace apps {
namespace {

constexpr Argument kPath[] = {{"PATH", "A path."}};
constexpr Argument kShell[] = {{"SHELL", "Which.", Argument::Count::kOne, Offer::kWords, "bash zsh"}};
constexpr Option kOptions[] = {{"zone", 'z', "ZONE", "It's [a] zone.", Offer::kWords, "utc local"},
                               {"force", 0, "", "Do it."}};
constexpr Verb kTable[] = {
    {"time", "The clock's time", {}, kOptions, "", "", {}, nullptr},
    {"wifi name", "Name", kPath, {}, "", "", {}, nullptr},
    {"wifi off", "Off", {}, {}, "", "", {}, nullptr},
    {"control", "Show", kPath, {}, "", "", {}, nullptr},
    {"control set", "Set", kPath, {}, "", "", {}, nullptr},
    {"completion", "Script", kShell, {}, "", "", {}, nullptr},
};
constexpr Option kCommon[] = {{"timeout", 0, "SECONDS", "End."}};
constexpr Program kProgram = {"kelva", "1", "", "", kTable, kCommon};

// What bash offers after these words, with the script in force.
std::string Offered(const std::string& words) {
  const std::string script = testing::TempDir() + "completion-" + std::to_string(::getpid()) + ".bash";
  std::ofstream(script) << BashCompletion(kProgram);
  const std::string command = "bash -c 'source " + script + "; compopt() { :; }; COMP_WORDS=(" + words +
                              "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _kelva; echo ${COMPREPLY[*]}' 2>&1";
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
  std::array<char, 1024> text{};
  const std::size_t size = std::fread(text.data(), 1, text.size(), pipe.get());
  std::remove(script.c_str());
  return std::string(text.data(), size == 0 ? 0 : size - 1);
}

TEST(BashCompletionTest, CommandsComeFirst) {
  EXPECT_EQ(Offered("kelva \"\""), "time wifi control completion");
  EXPECT_EQ(Offered("kelva co"), "control completion");
}

TEST(BashCompletionTest, SecondWordsOfACommandAreOffered) {
  EXPECT_EQ(Offered("kelva wifi \"\""), "name off");
  EXPECT_EQ(Offered("kelva control s"), "set");
  EXPECT_EQ(Offered("kelva control set \"\""), "");
}

TEST(BashCompletionTest, OptionsAreThoseOfTheCommandAndOfAll) {
  EXPECT_EQ(Offered("kelva time --zo"), "--zone");
  EXPECT_EQ(Offered("kelva time --ti"), "--timeout");
  EXPECT_EQ(Offered("kelva completion --zo"), "");
}

TEST(BashCompletionTest, ValuesAreThoseOfTheOptionOrArgument) {
  EXPECT_EQ(Offered("kelva time --zone l"), "local");
  EXPECT_EQ(Offered("kelva time -z u"), "utc");
  EXPECT_EQ(Offered("kelva completion z"), "zsh");
}

}  // namespace
}  // namespace apps

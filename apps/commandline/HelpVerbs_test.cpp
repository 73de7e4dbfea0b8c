#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "apps/commandline/Run.h"

namespace apps {
namespace {

using testing::HasSubstr;

constexpr Option kOptions[] = {kJsonOption, kHelpOption};

struct Ended {
  int status;
  std::string out;
};

// A program that can do nothing but explain itself.
Ended RunWith(const std::vector<const char*>& arguments) {
  const Program program = {"other", "1.2.3", "Another program", "", HelpVerbs(), kOptions};
  testing::internal::CaptureStdout();
  const int status = RunProgram(program, arguments);
  return {status, testing::internal::GetCapturedStdout()};
}

std::string Text(const std::filesystem::path& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

TEST(HelpVerbsTest, HelpManualAndCompletionComeFromTheTable) {
  EXPECT_THAT(RunWith({"help"}).out, HasSubstr("\n  completion "));
  EXPECT_THAT(RunWith({"help", "manual"}).out, HasSubstr("Usage: other manual [OPTIONS] [COMMAND] [WORD]"));
  EXPECT_THAT(RunWith({"help", "manual"}).out, HasSubstr("\n  other manual help | man -l -\n"));
  EXPECT_THAT(RunWith({"manual"}).out, HasSubstr(".SH EXIT STATUS"));
  EXPECT_THAT(RunWith({"manual", "help"}).out, HasSubstr(".TH OTHER\\-HELP 1 \"\" \"other 1.2.3\""));
  EXPECT_EQ(RunWith({"help", "frob"}).status, 2);
  EXPECT_EQ(RunWith({"completion", "cmd"}).status, 2);
}

TEST(HelpVerbsTest, AllPagesAreWrittenAtOnce) {
  const std::filesystem::path into = std::filesystem::path(testing::TempDir()) / "help-verbs" / "man";
  EXPECT_EQ(RunWith({"manual", "--json", "--into", into.c_str()}).status, 0);
  EXPECT_THAT(Text(into / "other-manual.1"), HasSubstr(".TH OTHER"));
  EXPECT_THAT(Text(into / "other.1"), HasSubstr(".SH EXIT STATUS"));
  std::filesystem::remove_all(into.parent_path());
}

TEST(HelpVerbsTest, AFolderThatCannotBeWrittenIsAFailure) {
  EXPECT_EQ(RunWith({"manual", "--into", "/dev/null/man"}).status, 1);
}

}  // namespace
}  // namespace apps

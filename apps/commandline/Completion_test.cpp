#include "apps/commandline/Completion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "apps/commandline/Parse.h"

namespace apps {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr Argument kPath[] = {{"PATH", "A path.", Argument::Count::kOneOrMore, Offer::kFile}};
constexpr Argument kCamera[] = {{"PATH", "A path.", Argument::Count::kOneOrMore, Offer::kCameraPath}};
constexpr Argument kShell[] = {{"SHELL", "Which.", Argument::Count::kOne, Offer::kWords, "bash zsh"},
                               {"COMMAND", "Which.", Argument::Count::kOptional, Offer::kVerb}};
constexpr Option kOptions[] = {{"zone", 'z', "ZONE", "It's [a] zone.", Offer::kWords, "utc local"},
                               {"force", 0, "", "Do it."}};
constexpr Verb kTable[] = {
    {"time", "The clock's time", {}, kOptions, "", "", {}, nullptr},
    {"wifi name", "Name", kPath, {}, "", "", {}, nullptr},
    {"wifi off", "Off", {}, {}, "", "", {}, nullptr},
    {"get", "Fetch", kCamera, {}, "", "", {}, nullptr},
    {"control", "Show", {}, {}, "", "", {}, nullptr},
    {"control set", "Set", kPath, {}, "", "", {}, nullptr},
    {"completion", "Script", kShell, {}, "", "", {}, nullptr},
};
constexpr Option kCommon[] = {{"serial", 's', "SERIAL", "The camera.", Offer::kSerial},
                              {"into", 0, "FOLDER", "Where to.", Offer::kFolder},
                              {"bus", 0, "NAME", "Which bus."}};

std::vector<std::string> Serials(const Invocation& call) {
  return {"K1", "$(touch X)", "~root", "a\x1b[2Jb", "two\nlines", "", call.Value("bus").value_or("no bus")};
}

std::vector<std::string> CameraWords(const Invocation& call, Offer, const std::string& typed) {
  if (typed == "/") return {"/DCIM/", "/A.TXT"};
  return {"DCIM/",
          "a b",
          "-rf",
          "back\\slash",
          "$(touch X)",
          "two\nlines",
          "[" + typed + "]",
          call.Value("bus").value_or("no bus")};
}

constexpr Program kProgram = {"tool", "1", "", "", kTable, kCommon, kExitCodes, {}, Serials, CameraWords};

std::string Offered(const std::vector<const char*>& words, std::string_view shell = "bash") {
  return Offers(kProgram, shell, words);
}

TEST(CompletionTest, ThereIsAScriptForEachShellAndItNamesTheProgram) {
  for (const char* shell : {"bash", "zsh", "fish"}) {
    EXPECT_THAT(Completion(kProgram, shell).value_or(""), HasSubstr("tool __complete " + std::string(shell))) << shell;
    EXPECT_THAT(Completion(kProgram, shell).value_or(""), Not(HasSubstr("PROGRAM"))) << shell;
  }
  EXPECT_FALSE(Completion(kProgram, "cmd").has_value());
}

TEST(OffersTest, CommandsComeFirstEachOnce) {
  EXPECT_EQ(Offered({""}), "time\nwifi\nget\ncontrol\ncompletion\n");
  EXPECT_EQ(Offered({}), "time\nwifi\nget\ncontrol\ncompletion\n");
  EXPECT_EQ(Offered({"co"}), "control\ncompletion\n");
}

TEST(OffersTest, NamesOfACameraAreOfferedThatCanBeTyped) {
  EXPECT_EQ(Offered({"--bus", "b", "get", ""}), "DCIM/\na b\n$(touch X)\n[]\nb\n");
  EXPECT_EQ(Offered({"get", "D"}), "DCIM/\n");
  EXPECT_THAT(Offered({"get", "'a b"}, "zsh"), HasSubstr("\n[a b]\n"));
}

TEST(OffersTest, ADriveInBashIsLeftToTheShell) {
  EXPECT_EQ(Offered({"get", "I", ":", "D"}), "DCIM/\n");
  EXPECT_EQ(Offered({"get", "I", ":", "a"}), "a b\n");
}

TEST(OffersTest, BehindABareDrivePathsAreOffered) {
  EXPECT_EQ(Offered({"get", "I", ":"}), "/DCIM/\n/A.TXT\n");
}

TEST(OffersTest, SecondWordsOfACommandAreOffered) {
  EXPECT_EQ(Offered({"wifi", ""}), "name\noff\n");
  EXPECT_EQ(Offered({"control", "s"}), "set\n");
  EXPECT_EQ(Offered({"nonsense", ""}), "");
}

TEST(OffersTest, OptionsAreThoseOfTheCommandAndOfAll) {
  EXPECT_EQ(Offered({"time", "--"}), "--serial\n--into\n--bus\n--zone\n--force\n");
  EXPECT_EQ(Offered({"time", "--zo"}), "--zone\n");
  EXPECT_EQ(Offered({"completion", "--zo"}), "");
  EXPECT_EQ(Offered({"-"}), "--serial\n--into\n--bus\n");
}

TEST(OffersTest, ValuesAreThoseOfTheOptionOrArgument) {
  EXPECT_EQ(Offered({"time", "--zone", "l"}), "local\n");
  EXPECT_EQ(Offered({"time", "-z", ""}), "utc\nlocal\n");
  EXPECT_EQ(Offered({"time", "--zone=l"}), "--zone=local\n");
  EXPECT_EQ(Offered({"time", "--force=l"}), "");
  EXPECT_EQ(Offered({"completion", "z"}), "zsh\n");
  EXPECT_EQ(Offered({"completion", "--bus", "B", "z"}), "zsh\n");
  EXPECT_EQ(Offered({"completion", "zsh", "t"}), "time\n");
  EXPECT_EQ(Offered({"completion", "zsh", "time", ""}), "");
}

TEST(OffersTest, PathsAreLeftToTheShell) {
  EXPECT_EQ(Offered({"control", "set", "a", "b"}), ":files\n");
  EXPECT_EQ(Offered({"time", "--into", "b"}), ":folders\n");
  EXPECT_EQ(Offered({"control", "set", "--", "-"}), ":files\n");
}

TEST(OffersTest, SerialNumbersAreOfferedAsTheyAreButForThoseThatCannotBeTyped) {
  EXPECT_EQ(Offered({"time", "--serial", ""}), "K1\n$(touch X)\nno bus\n");
  EXPECT_EQ(Offered({"time", "-s", ""}, "zsh"), "K1\n$(touch X)\nno bus\n");
  EXPECT_EQ(Offered({"--bus", "'a \"bus\"'", "time", "--serial", "a"}), "a \"bus\"\n");
  EXPECT_EQ(Offered({"time", "--serial", "\\$"}), "$(touch X)\n");
}

TEST(OffersTest, BashGivesAnOptionItsSignAndItsValueAsThreeWords) {
  EXPECT_EQ(Offered({"time", "--serial", "=", "K"}), "K1\n");
  EXPECT_EQ(Offered({"time", "--serial", "="}), "K1\n$(touch X)\nno bus\n");
}

TEST(OffersTest, OtherShellsChooseThemselvesAndShowWhatEachMeans) {
  EXPECT_EQ(Offered({"wifi", "xx"}, "fish"), "name\tName\noff\tOff\n");
  EXPECT_EQ(Offered({"-"}, "zsh"), "--serial\tThe camera.\n--into\tWhere to.\n--bus\tWhich bus.\n");
  EXPECT_EQ(Offered({"--z"}, "fish"), "");
}

TEST(UnquotedTest, QuotesAndBackslashesGoAndNothingIsEvaluated) {
  EXPECT_EQ(Unquoted("plain"), "plain");
  EXPECT_EQ(Unquoted("'a \\b'\"c \\$d\"\\ e"), "a \\bc $d e");
  EXPECT_EQ(Unquoted("\"open"), "open");
  EXPECT_EQ(Unquoted("$(touch X)`id`"), "$(touch X)`id`");
  EXPECT_EQ(Unquoted("end\\"), "end\\");
}

}  // namespace
}  // namespace apps

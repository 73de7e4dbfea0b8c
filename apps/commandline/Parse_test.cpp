#include "apps/commandline/Parse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/commandline/Failure.h"

namespace apps {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr Argument kPath[] = {{"PATH", "A path."}};
constexpr Argument kFiles[] = {{"FOLDER", "Where to."}, {"FILE", "What.", Argument::Count::kOneOrMore}};
constexpr Argument kMaybe[] = {{"N", "A number.", Argument::Count::kOptional}};
constexpr Option kOwn[] = {{"output", 'o', "FILE", "Where to."}, {"force", 'f', "", "Do it."}};

constexpr Verb kTable[] = {
    {"get", "Fetch", kPath, kOwn, "", "", {}, nullptr},
    {"copy", "Copy", kFiles, {}, "", "", {}, nullptr},
    {"control", "Show", kMaybe, {}, "", "", {}, nullptr, false, {}, "control get"},
    {"control set", "Set", kPath, {}, "", "", {}, nullptr},
    {"wifi name", "Name", kPath, {}, "", "", {}, nullptr},
    {"wifi off", "Off", {}, {}, "", "", {}, nullptr},
    {"wifi passphrase", "Ask", {}, {}, "", "", {}, nullptr, false, {}, {}, true},
};

constexpr Option kCommon[] = {{"serial", 's', "SERIAL", "The camera."}, kJsonOption, kQuietOption, kHelpOption};
constexpr Program kProgram = {"kelva", "1", "", "", kTable, kCommon};

Invocation ParseWords(std::vector<const char*> words) {
  return Parse(kProgram, words);
}

std::string UsageError(std::vector<const char*> words) {
  try {
    ParseWords(std::move(words));
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Code(), ExitCode::kUsage);
    return failure.what();
  }
  return "no error";
}

TEST(ParseTest, OptionsMayStandBeforeAndAfterTheVerbAndItsWords) {
  const Invocation call = ParseWords({"--json", "get", "-o", "x", "I:\\A", "--serial=7", "-f"});
  EXPECT_EQ(call.verb->name, "get");
  EXPECT_THAT(call.words, ElementsAre("I:\\A"));
  EXPECT_EQ(call.Value("output"), "x");
  EXPECT_EQ(call.Value("serial"), "7");
  EXPECT_TRUE(call.Has("json"));
  EXPECT_TRUE(call.Has("force"));
  EXPECT_FALSE(call.Has("quiet"));
}

TEST(ParseTest, LettersMayBeJoinedAndCarryTheirValue) {
  const Invocation call = ParseWords({"get", "-qfox.jpg", "A"});
  EXPECT_TRUE(call.Has("quiet"));
  EXPECT_TRUE(call.Has("force"));
  EXPECT_EQ(call.Value("output"), "x.jpg");
}

TEST(ParseTest, TwoDashesEndTheOptions) {
  EXPECT_THAT(ParseWords({"get", "--", "--force"}).words, ElementsAre("--force"));
}

TEST(ParseTest, ADashAndNegativeNumbersAreWords) {
  EXPECT_THAT(ParseWords({"get", "-"}).words, ElementsAre("-"));
  EXPECT_THAT(ParseWords({"get", "-5"}).words, ElementsAre("-5"));
}

TEST(ParseTest, TheLastOfSeveralValuesCountsAndAllAreKept) {
  const Invocation call = ParseWords({"get", "A", "-o", "1", "-o", "2"});
  EXPECT_EQ(call.Value("output"), "2");
  EXPECT_THAT(call.Values("output"), ElementsAre("1", "2"));
}

TEST(ParseTest, ErrorsDoNotRepeatWhatMayBeASecret) {
  EXPECT_EQ(UsageError({"wifi", "passphrase", "hunter2secret"}),
            "`kelva wifi passphrase` takes no words; what was given is one too many.");
  for (const char* word : {"--hunter2secret", "--hunter2=secret", "-unter2secret"}) {
    EXPECT_EQ(UsageError({"wifi", "passphrase", word}),
              "There is no such option of `kelva wifi passphrase`; `kelva help wifi passphrase` shows how it is used.");
  }
}

TEST(ParseTest, ANameOfTwoWordsGoesBeforeItsFirstWord) {
  EXPECT_EQ(ParseWords({"control", "set", "3"}).verb->name, "control set");
  const Invocation call = ParseWords({"control", "3"});
  EXPECT_EQ(call.verb->name, "control");
  EXPECT_THAT(call.words, ElementsAre("3"));
}

TEST(ParseTest, ASecondNameIsTheSameVerbAndIsKept) {
  const Invocation call = ParseWords({"control", "get", "3"});
  EXPECT_EQ(call.verb->name, "control");
  EXPECT_EQ(call.Name(), "control get");
  EXPECT_EQ(ParseWords({"control"}).Name(), "control");
}

TEST(ParseTest, HalfANameSaysWhatIsMissing) {
  EXPECT_EQ(UsageError({"wifi"}), "`kelva wifi` needs one of these after it: name, off, passphrase.");
}

TEST(ParseTest, ANearMissIsNamed) {
  EXPECT_EQ(UsageError({"qqqq"}), "There is no command \"qqqq\"; `kelva help` lists all.");
  EXPECT_EQ(UsageError({"cpoy"}), "There is no command \"cpoy\"; did you mean `copy`?");
}

TEST(ParseTest, UnknownOptionsAreErrorsThatNameTheVerb) {
  EXPECT_EQ(UsageError({"get", "A", "--nope"}),
            "There is no option --nope of `kelva get`; `kelva help get` shows how it is used.");
  EXPECT_THAT(UsageError({"get", "A", "-z"}), HasSubstr("no option -z"));
}

TEST(ParseTest, MissingAndSurplusWordsAreErrors) {
  EXPECT_EQ(UsageError({"get"}), "`kelva get` needs PATH; `kelva help get` shows how it is used.");
  EXPECT_EQ(UsageError({"copy", "F"}), "`kelva copy` needs FILE; `kelva help copy` shows how it is used.");
  EXPECT_EQ(UsageError({"get", "A", "B"}), "`kelva get` takes one PATH; \"B\" is one too many.");
  EXPECT_EQ(UsageError({"wifi", "off", "B"}), "`kelva wifi off` takes no words; \"B\" is one too many.");
  EXPECT_THAT(ParseWords({"copy", "F", "1", "2", "3"}).words, ElementsAre("F", "1", "2", "3"));
}

TEST(ParseTest, MissingAndSurplusValuesAreErrors) {
  EXPECT_THAT(UsageError({"get", "A", "--output"}), HasSubstr("--output needs a value, FILE"));
  EXPECT_THAT(UsageError({"get", "A", "--force=yes"}), HasSubstr("--force takes no value"));
}

TEST(ParseTest, NothingAtAllIsAnErrorButHelpAndVersionNeedNoVerb) {
  EXPECT_EQ(UsageError({}), "No command was given; `kelva help` lists all.");
  EXPECT_EQ(ParseWords({"--help"}).verb, nullptr);
  EXPECT_TRUE(ParseWords({"--version"}).version);
  EXPECT_THAT(ParseWords({"get", "--help"}).words, IsEmpty());
}

TEST(ParseTest, ControlCharactersInAWordAreNotEchoed) {
  EXPECT_EQ(UsageError({"\x1b[2J"}), "There is no command \"\\x1b[2J\"; `kelva help` lists all.");
}

TEST(ParseSecondsTest, TakesDecimalsAboveZero) {
  EXPECT_EQ(ParseSeconds("2.5", "--timeout").count(), 2500);
  EXPECT_EQ(ParseSeconds("0.0001", "--timeout").count(), 1);
  for (const char* bad : {"", "0", "-1", "1s", "inf", "nan", "1e300"}) {
    EXPECT_THROW(ParseSeconds(bad, "--timeout"), Failure) << bad;
  }
  EXPECT_EQ(ParseSeconds("0", "--wait-busy", Zero::kTaken).count(), 0);
  EXPECT_THROW(ParseSeconds("-1", "--wait-busy", Zero::kTaken), Failure);
}

TEST(ParseNumberTest, IsBoundedOnBothSides) {
  EXPECT_EQ(ParseNumber("255", "a control", 0, 255), 255);
  for (const char* bad : {"256", "-1", "0x10", "", "3 ", "99999999999999999999"}) {
    EXPECT_THROW(ParseNumber(bad, "a control", 0, 255), Failure) << bad;
  }
}

}  // namespace
}  // namespace apps

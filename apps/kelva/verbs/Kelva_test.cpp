#include <gtest/gtest.h>

#include <set>
#include <string>

#include "apps/commandline/Help.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

TEST(KelvaTest, EveryRowIsWholeAndEveryNameIsThereOnce) {
  std::set<std::string_view> names;
  for (const Verb& verb : Kelva().verbs) {
    EXPECT_TRUE(names.insert(verb.name).second) << verb.name;
    EXPECT_FALSE(verb.summary.empty()) << verb.name;
    EXPECT_FALSE(verb.summary.ends_with('.')) << verb.name;
    EXPECT_NE(verb.run == nullptr, verb.doneBy.empty()) << verb.name;
  }
  EXPECT_GE(names.size(), 30U);
}

TEST(KelvaTest, EveryCommandShowsAnExampleOfItself) {
  for (const Verb& verb : Kelva().verbs) {
    EXPECT_FALSE(verb.examples.empty()) << verb.name;
    for (const Example& example : verb.examples) {
      EXPECT_NE(CommandOf(Kelva(), example).find("kelva " + std::string(verb.name)), std::string::npos);
      EXPECT_FALSE(example.meaning.empty()) << example.command;
    }
  }
}

TEST(KelvaTest, CommonOptionsHaveNamesAndLettersOfTheirOwn) {
  std::set<std::string_view> names;
  std::set<char> letters;
  for (const Option& option : Kelva().options) {
    EXPECT_TRUE(names.insert(option.name).second) << option.name;
    EXPECT_TRUE(option.letter == 0 || letters.insert(option.letter).second) << option.name;
    EXPECT_TRUE(option.help.ends_with('.')) << option.name;
  }
}

TEST(KelvaTest, NoOptionOfAVerbHidesACommonOne) {
  for (const Verb& verb : Kelva().verbs) {
    for (const Option& own : verb.options) {
      for (const Option& common : Kelva().options) {
        EXPECT_NE(own.name, common.name) << verb.name;
        EXPECT_FALSE(own.letter != 0 && own.letter == common.letter) << verb.name << " -" << own.letter;
      }
    }
  }
}

}  // namespace
}  // namespace apps

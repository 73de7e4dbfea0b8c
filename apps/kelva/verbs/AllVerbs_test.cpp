#include <gtest/gtest.h>

#include <set>
#include <string>

#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

TEST(AllVerbsTest, EveryRowIsWholeAndEveryNameIsThereOnce) {
  std::set<std::string_view> names;
  for (const Verb& verb : AllVerbs()) {
    EXPECT_TRUE(names.insert(verb.name).second) << verb.name;
    EXPECT_FALSE(verb.summary.empty()) << verb.name;
    EXPECT_FALSE(verb.summary.ends_with('.')) << verb.name;
    EXPECT_NE(verb.run, nullptr) << verb.name;
  }
  EXPECT_GE(names.size(), 30U);
}

TEST(AllVerbsTest, EveryCommandShowsAnExampleOfItself) {
  for (const Verb& verb : AllVerbs()) {
    EXPECT_FALSE(verb.examples.empty()) << verb.name;
    for (const Example& example : verb.examples) {
      EXPECT_NE(example.command.find("kelva " + std::string(verb.name)), std::string_view::npos) << example.command;
      EXPECT_FALSE(example.meaning.empty()) << example.command;
    }
  }
}

TEST(AllVerbsTest, NoOptionOfAVerbHidesACommonOne) {
  for (const Verb& verb : AllVerbs()) {
    for (const Option& own : verb.options) {
      for (const Option& common : CommonOptions()) {
        EXPECT_NE(own.name, common.name) << verb.name;
        EXPECT_FALSE(own.letter != 0 && own.letter == common.letter) << verb.name << " -" << own.letter;
      }
    }
  }
}

}  // namespace
}  // namespace apps

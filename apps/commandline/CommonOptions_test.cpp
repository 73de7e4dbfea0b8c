#include <gtest/gtest.h>

#include <set>

#include "apps/commandline/Verb.h"

namespace apps {
namespace {

TEST(CommonOptionsTest, NamesAndLettersAreThereOnce) {
  std::set<std::string_view> names;
  std::set<char> letters;
  for (const Option& option : CommonOptions()) {
    EXPECT_TRUE(names.insert(option.name).second) << option.name;
    EXPECT_TRUE(option.letter == 0 || letters.insert(option.letter).second) << option.name;
    EXPECT_TRUE(option.help.ends_with('.')) << option.name;
  }
}

}  // namespace
}  // namespace apps

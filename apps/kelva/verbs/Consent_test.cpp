#include "apps/kelva/verbs/Consent.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <string_view>

#include "apps/commandline/Failure.h"
#include "apps/commandline/testing/SilentContext.h"
#include "base/FileDescriptor.h"
#include "base/testing/UnnamedFile.h"

namespace apps {
namespace {

const Question kQuestion{"Two files go.", "Delete?", "nothing was deleted"};

// Puts a file with what a person types in place of standard input.
class ConsentTest : public testing::Test, protected SilentContext {
 protected:
  ConsentTest() : input_(::dup(STDIN_FILENO)) {}
  ~ConsentTest() override { ::dup2(input_.Get(), STDIN_FILENO); }

  static void Type(std::string_view text) {
    const base::FileDescriptor typed(base::test::UnnamedFile());
    EXPECT_EQ(::pwrite(typed.Get(), text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
    ::dup2(typed.Get(), STDIN_FILENO);
  }

 private:
  const base::FileDescriptor input_;
};

TEST_F(ConsentTest, YesGoesOnAfterTheFactsAndTheQuestion) {
  Type("yes\n");
  EXPECT_NO_THROW(Ask(context_, kQuestion));
  EXPECT_EQ(Said(), "kelva: Two files go.\nkelva: Delete? Type yes and press Enter:\n");
}

TEST_F(ConsentTest, TheFirstTenThingsAreShownAndHowManyMoreThereAre) {
  Question question{"Files go:", "Delete?", "nothing was deleted"};
  for (int i = 1; i <= 10; ++i) question.things.Add("F" + std::to_string(i));
  Type("yes\n");
  Ask(context_, question);
  EXPECT_TRUE(Said().starts_with("kelva: Files go:\nkelva:   F1\nkelva:   F2\n")) << Said();
  EXPECT_TRUE(Said().ends_with("kelva:   F10\nkelva: Delete? Type yes and press Enter:\n")) << Said();
  for (int i = 11; i <= 13; ++i) question.things.Add("F" + std::to_string(i));
  Type("yes\n");
  Ask(context_, question);
  EXPECT_TRUE(Said().ends_with("kelva:   F10\nkelva:   and 3 more\nkelva: Delete? Type yes and press Enter:\n"))
      << Said();
}

TEST_F(ConsentTest, EveryOtherAnswerEndsTheCommandAndSaysWhatIsTrue) {
  for (const char* answer : {"no\n", "", "y\n", "yes please\n", "YES\n"}) {
    Type(answer);
    try {
      Ask(context_, kQuestion);
      FAIL() << answer;
    } catch (const Failure& failure) {
      EXPECT_STREQ(failure.what(), "The answer was not yes; nothing was deleted.");
    }
  }
}

TEST_F(ConsentTest, NobodyIsAskedWhereStandardInputIsNoTerminal) {
  Type("no\n");
  EXPECT_FALSE(CanAsk(context_));
  EXPECT_NO_THROW(AskOnTerminal(context_, kQuestion));
  EXPECT_EQ(Said(), "");
}

}  // namespace
}  // namespace apps

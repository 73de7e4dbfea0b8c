#include "apps/kelva/verbs/Consent.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <string_view>
#include <thread>
#include <utility>

#include "apps/commandline/Failure.h"
#include "apps/commandline/SoFar.h"
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

TEST_F(ConsentTest, WhoEndsTheCommandAtTheQuestionIsToldWhatIsTrue) {
  SoFar soFar;
  soFar.Tell([] { return SoFar::Done{"2 of 3 deleted", std::move(Json::Object().Set("failed", 1))}; });
  context_.soFar = &soFar;
  std::array<int, 2> typed{};
  ASSERT_EQ(::pipe(typed.data()), 0);
  ::dup2(typed[0], STDIN_FILENO);
  ::close(typed[0]);
  std::thread asking([&] { Ask(context_, kQuestion); });
  while (soFar.Ask()->words != "nothing was deleted") std::this_thread::yield();
  EXPECT_EQ(soFar.Ask()->members.Text(), R"({"failed":1})");
  EXPECT_EQ(::write(typed[1], "yes\n", 4), 4);
  asking.join();
  ::close(typed[1]);
  EXPECT_EQ(soFar.Ask()->words, "2 of 3 deleted");
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

// CoreFoundation must not be used after a fork by a process that used it before, so the tool's first call of the frameworks
// comes after Guard's fork. Here each function of darwin/ that is entered is counted (-finstrument-functions), in the place of
// the frameworks' own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "apps/kelva/verbs/Verbs.h"
#include "apps/tool/Tool.h"
#include "base/testing/ScratchFolder.h"

namespace {

// Plain, since a function that the counter calls may be counted itself.
volatile int entered = 0;
volatile bool endsAtFork = false;
constexpr int kNothingWasCalled = 40;
constexpr int kSomethingWasCalled = 41;

}  // namespace

extern "C" {

void __cyg_profile_func_enter(void*, void*) {
  entered = entered + 1;
}

void __cyg_profile_func_exit(void*, void*) {}

pid_t __real_fork();

pid_t __wrap_fork() {
  if (endsAtFork) ::_exit(entered == 0 ? kNothingWasCalled : kSomethingWasCalled);
  return __real_fork();
}

}  // extern "C"

namespace apps {
namespace {

using testing::ExitedWithCode;

// A command line of a verb whose work may be repeated in another process.
std::vector<std::string> CommandOf(const Verb& verb, const std::string& folder) {
  if (verb.guardedWith.empty()) return {std::string(verb.name), folder};
  return {std::string(verb.name), "--" + std::string(verb.guardedWith), folder + "/file"};
}

int RunUntilFork(const std::vector<std::string>& words) {
  std::vector<const char*> arguments;
  for (const std::string& word : words) arguments.push_back(word.c_str());
  entered = 0;
  endsAtFork = true;
  return RunTool(Kelva(), arguments);
}

TEST(ForkDeathTest, NoVerbCallsTheFrameworksBeforeItsProcessIsForked) {
  const base::ScratchFolder scratch;
  int guarded = 0;
  for (const Verb& verb : Kelva().verbs) {
    if (!verb.guarded) continue;
    ++guarded;
    std::vector<std::string> words = CommandOf(verb, scratch.Path());
    EXPECT_EXIT(::_exit(RunUntilFork(words)), ExitedWithCode(kNothingWasCalled), "") << verb.name;
    words.insert(words.end(), {"--trace", scratch.Path() / "trace"});
    EXPECT_EXIT(::_exit(RunUntilFork(words)), ExitedWithCode(kNothingWasCalled), "") << verb.name;
  }
  EXPECT_GT(guarded, 1);
}

TEST(ForkDeathTest, ACallOfTheFrameworksIsCounted) {
  EXPECT_EXIT(
      {
        RunUntilFork({"list"});
        ::_exit(entered > 0 ? 0 : 1);
      },
      ExitedWithCode(0), "");
}

}  // namespace
}  // namespace apps

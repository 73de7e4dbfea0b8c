#include "apps/kelva/verbs/Hook.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "base/FileDescriptor.h"
#include "base/testing/UnnamedFile.h"

namespace apps {
namespace {

std::string OutputOf(const std::string& command, std::vector<std::pair<std::string, std::string>> variables) {
  const base::FileDescriptor page(base::test::UnnamedFile());
  EXPECT_EQ(RunCommand(command, variables, page.Get()), "");
  std::array<char, 256> text{};
  const ssize_t size = ::pread(page.Get(), text.data(), text.size(), 0);
  return std::string(text.data(), static_cast<std::size_t>(size));
}

TEST(HookTest, TheCommandSeesItsVariablesInPlaceOfOlderOnes) {
  ::setenv("KELVA_SERIAL", "old", 1);
  EXPECT_EQ(OutputOf("echo $KELVA_EVENT $KELVA_SERIAL", {{"KELVA_EVENT", "attached"}, {"KELVA_SERIAL", "K1"}}),
            "attached K1\n");
  ::unsetenv("KELVA_SERIAL");
}

TEST(HookTest, ValuesAreNotCommands) {
  EXPECT_EQ(OutputOf("echo \"$KELVA_SERIAL\"", {{"KELVA_SERIAL", "$(echo no); `echo no`"}}), "$(echo no); `echo no`\n");
}

TEST(HookTest, AFailureSaysHowItEnded) {
  EXPECT_EQ(RunCommand("exit 3", {}, -1), "ended with status 3");
  EXPECT_EQ(RunCommand("kill -9 $$", {}, -1), "was killed by signal 9");
}

}  // namespace
}  // namespace apps

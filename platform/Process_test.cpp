#include "platform/Process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "base/FileDescriptor.h"

namespace platform {
namespace {

TEST(ProcessTest, TheProgramKnowsItsOwnPath) {
  EXPECT_TRUE(std::filesystem::path(OwnProgram()).filename().string().starts_with("platform_")) << OwnProgram();
  EXPECT_TRUE(std::filesystem::equivalent(OwnProgram(), OwnImage()));
}

TEST(ProcessTest, AProgramThatIsStartedOnceMoreHasTheSameName) {
  EXPECT_EQ(std::filesystem::path(OwnImage()).filename(), std::filesystem::path(OwnProgram()).filename());
}

TEST(ProcessTest, AProcessHasAName) {
  EXPECT_TRUE(ProcessName(::getpid()).starts_with("platform_")) << ProcessName(::getpid());
  const pid_t ended = ::fork();
  if (ended == 0) ::_exit(0);
  ::waitpid(ended, nullptr, 0);
  EXPECT_EQ(ProcessName(ended), "a process");
}

TEST(ProcessTest, TheEnvironmentIsTheOneOfThisProcess) {
  ::setenv("KELVA_PLATFORM_TEST", "here", 1);
  bool found = false;
  for (char** entry = Environment(); *entry != nullptr; ++entry) {
    found = found || std::string(*entry) == "KELVA_PLATFORM_TEST=here";
  }
  EXPECT_TRUE(found);
}

TEST(ProcessTest, AProgramInheritsTheStandardDescriptorsAlone) {
  const base::FileDescriptor open(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  posix_spawnattr_t attributes;
  posix_spawn_file_actions_t actions;
  ::posix_spawnattr_init(&attributes);
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDOUT_FILENO);
  PassStandardDescriptorsAlone(attributes, 0, actions);
  std::string text = "test ! -e /dev/fd/" + std::to_string(open.Get()) + " && test -e /dev/fd/1";
  std::string shell = "sh";
  std::string option = "-c";
  char* const arguments[] = {shell.data(), option.data(), text.data(), nullptr};
  pid_t child = 0;
  ASSERT_EQ(::posix_spawn(&child, "/bin/sh", &actions, &attributes, arguments, Environment()), 0);
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  ::posix_spawn_file_actions_destroy(&actions);
  ::posix_spawnattr_destroy(&attributes);
}

}  // namespace
}  // namespace platform

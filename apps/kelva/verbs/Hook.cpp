// Runs the command of `kelva watch --exec`.
#include "apps/kelva/verbs/Hook.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <string_view>
#include <vector>

#include "platform/Process.h"

namespace apps {
namespace {

// The environment with some variables set; the texts live here.
class Environment {
 public:
  explicit Environment(const std::vector<std::pair<std::string, std::string>>& variables) {
    for (const auto& [name, value] : variables) texts_.push_back(name + "=" + value);
    for (char** entry = platform::Environment(); *entry != nullptr; ++entry) {
      if (!IsSet(*entry, variables)) pointers_.push_back(*entry);
    }
    for (std::string& text : texts_) pointers_.push_back(text.data());
    pointers_.push_back(nullptr);
  }
  char* const* Get() const { return pointers_.data(); }

 private:
  static bool IsSet(std::string_view entry, const std::vector<std::pair<std::string, std::string>>& variables) {
    for (const auto& [name, value] : variables) {
      if (entry.starts_with(name + "=")) return true;
    }
    return false;
  }

  std::vector<std::string> texts_;
  std::vector<char*> pointers_;
};

// What the child starts with: no signal blocked or ignored, and the real standard output.
class Setup {
 public:
  explicit Setup(int outputFd) {
    ::posix_spawnattr_init(&attributes_);
    ::posix_spawn_file_actions_init(&actions_);
    sigset_t none;
    sigemptyset(&none);
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    ::posix_spawnattr_setsigmask(&attributes_, &none);
    ::posix_spawnattr_setsigdefault(&attributes_, &pipe);
    ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    if (outputFd >= 0) ::posix_spawn_file_actions_adddup2(&actions_, outputFd, STDOUT_FILENO);
  }
  ~Setup() {
    ::posix_spawnattr_destroy(&attributes_);
    ::posix_spawn_file_actions_destroy(&actions_);
  }
  Setup(const Setup&) = delete;
  Setup& operator=(const Setup&) = delete;

  int Spawn(pid_t& child, const std::string& command, const Environment& environment) const {
    std::string shell = "sh";
    std::string option = "-c";
    std::string text = command;
    char* const arguments[] = {shell.data(), option.data(), text.data(), nullptr};
    return ::posix_spawn(&child, "/bin/sh", &actions_, &attributes_, arguments, environment.Get());
  }

 private:
  posix_spawnattr_t attributes_;
  posix_spawn_file_actions_t actions_;
};

std::string HowItEnded(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return std::string("could not be waited for: ") + std::strerror(errno);
  }
  if (WIFSIGNALED(status)) return "was killed by signal " + std::to_string(WTERMSIG(status));
  if (WEXITSTATUS(status) == 0) return "";
  return "ended with status " + std::to_string(WEXITSTATUS(status));
}

}  // namespace

std::string RunCommand(const std::string& command, const std::vector<std::pair<std::string, std::string>>& variables,
                       int outputFd) {
  const Environment environment(variables);
  pid_t child = 0;
  const int error = Setup(outputFd).Spawn(child, command, environment);
  if (error != 0) return std::string("could not be started: ") + std::strerror(error);
  return HowItEnded(child);
}

}  // namespace apps

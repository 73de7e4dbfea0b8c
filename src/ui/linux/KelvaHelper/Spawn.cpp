// Starts a program in a session of its own, without waiting for its end.

#include "src/ui/linux/KelvaHelper/Spawn.h"

#include <signal.h>
#include <spawn.h>
#include <unistd.h>

namespace helper {
namespace {

/// The attributes of a child that starts from a clean slate.
class CleanSlate {
 public:
  CleanSlate() {
    sigset_t all;
    sigset_t none;
    ::sigfillset(&all);
    ::sigemptyset(&none);
    ::posix_spawnattr_init(&attributes_);
    ::posix_spawnattr_setsigdefault(&attributes_, &all);
    ::posix_spawnattr_setsigmask(&attributes_, &none);
    // A session of its own: Ctrl-C in the agent's terminal is meant for the agent alone.
    ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSID);
  }
  CleanSlate(const CleanSlate&) = delete;
  CleanSlate& operator=(const CleanSlate&) = delete;
  ~CleanSlate() { ::posix_spawnattr_destroy(&attributes_); }

  const posix_spawnattr_t* Get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_;
};

}  // namespace

void ForgetChildren() {
  struct sigaction ignore = {};
  ignore.sa_handler = SIG_IGN;
  ignore.sa_flags = SA_NOCLDWAIT;
  ::sigaction(SIGCHLD, &ignore, nullptr);
}

int Spawn(const std::vector<std::string>& command) {
  std::vector<char*> words;
  words.reserve(command.size() + 1);
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  const CleanSlate attributes;
  pid_t child = 0;
  return ::posix_spawn(&child, words.front(), nullptr, attributes.Get(), words.data(), environ);
}

}  // namespace helper

#include "benchmarks/Processes.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>

extern char** environ;

namespace bench {

namespace {

std::runtime_error Failed(const std::string& what, int error) {
  return std::runtime_error(what + ": " + std::strerror(error));
}

/// The child's standard output goes nowhere: the measurement's own report stands there.
class QuietOutput {
 public:
  QuietOutput() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  }
  ~QuietOutput() { posix_spawn_file_actions_destroy(&actions_); }
  QuietOutput(const QuietOutput&) = delete;
  QuietOutput& operator=(const QuietOutput&) = delete;
  const posix_spawn_file_actions_t* Get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

}  // namespace

std::int64_t Now() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return std::int64_t{now.tv_sec} * 1000000000 + now.tv_nsec;
}

ScratchFolder::ScratchFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "kelva-bench.XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw Failed("cannot make " + name, errno);
  path_ = name;
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

Child::Child(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  const QuietOutput quiet;
  const int error = posix_spawn(&pid_, arguments[0], quiet.Get(), nullptr, arguments.data(), environ);
  if (error != 0) throw Failed("cannot start " + command[0], error);
}

Child::~Child() {
  if (pid_ == 0) return;
  kill(pid_, SIGTERM);
  waitpid(pid_, nullptr, 0);
}

void Child::Join() {
  waitpid(pid_, nullptr, 0);
  pid_ = 0;
}

StampPipe::StampPipe(const std::filesystem::path& path) {
  if (mkfifo(path.c_str(), 0600) != 0) throw Failed("cannot make " + path.string(), errno);
  // Open for both, so that the pipe never ends while no program has it open.
  descriptor_ = open(path.c_str(), O_RDWR | O_CLOEXEC);
  if (descriptor_ < 0) throw Failed("cannot open " + path.string(), errno);
}

StampPipe::~StampPipe() {
  close(descriptor_);
}

std::optional<std::int64_t> StampPipe::Next(std::chrono::milliseconds timeout) const {
  pollfd wait{descriptor_, POLLIN, 0};
  std::int64_t stamp = 0;
  if (poll(&wait, 1, static_cast<int>(timeout.count())) != 1 ||
      read(descriptor_, &stamp, sizeof stamp) != sizeof stamp) {
    return {};
  }
  return stamp;
}

}  // namespace bench

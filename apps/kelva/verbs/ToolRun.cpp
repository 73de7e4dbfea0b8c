// Runs this program once more, and reads what it says.
#include "apps/kelva/verbs/ToolRun.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Words.h"
#include "platform/Process.h"
#include "platform/Sockets.h"

namespace apps {
namespace {

struct Pipe {
  Pipe() {
    std::array<int, 2> ends{-1, -1};
    if (platform::Pipe(ends) != 0) throw SystemFailure("make a pipe", errno);
    read.Reset(ends[0]);
    write.Reset(ends[1]);
    platform::SetNonBlocking(read.Get());
  }
  base::FileDescriptor read;
  base::FileDescriptor write;
};

// No signal blocked, no input.
class Setup {
 public:
  Setup(int output, int messages) {
    ::posix_spawnattr_init(&attributes_);
    ::posix_spawn_file_actions_init(&actions_);
    sigset_t none;
    sigemptyset(&none);
    ::posix_spawnattr_setsigmask(&attributes_, &none);
    ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK);
    ::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions_, messages, STDERR_FILENO);
  }
  ~Setup() {
    ::posix_spawnattr_destroy(&attributes_);
    ::posix_spawn_file_actions_destroy(&actions_);
  }
  Setup(const Setup&) = delete;
  Setup& operator=(const Setup&) = delete;

  pid_t Spawn(const std::vector<std::string>& words) const {
    std::vector<std::string> texts = {"kelva"};
    texts.insert(texts.end(), words.begin(), words.end());
    std::vector<char*> arguments;
    arguments.reserve(texts.size() + 1);
    for (std::string& text : texts) arguments.push_back(text.data());
    arguments.push_back(nullptr);
    pid_t process = 0;
    const int error = ::posix_spawn(&process, platform::OwnImage().c_str(), &actions_, &attributes_, arguments.data(),
                                    platform::Environment());
    if (error != 0) throw SystemFailure("start a process", error);
    return process;
  }

 private:
  posix_spawnattr_t attributes_;
  posix_spawn_file_actions_t actions_;
};

}  // namespace

ToolRun::ToolRun(const std::vector<std::string>& words, Take output, Take messages) {
  Pipe out;
  Pipe err;
  process_ = Setup(out.write.Get(), err.write.Get()).Spawn(words);
  output_ = {std::move(out.read), std::move(output)};
  messages_ = {std::move(err.read), std::move(messages)};
}

ToolRun::~ToolRun() {
  AskToStop();
  Wait();
}

void ToolRun::AddTo(std::vector<pollfd>& watched) const {
  // poll passes over a descriptor below 0.
  for (const Stream* stream : {&output_, &messages_}) watched.push_back({stream->pipe.Get(), POLLIN, 0});
}

void ToolRun::Read() {
  Read(output_);
  Read(messages_);
}

void ToolRun::Read(Stream& stream) {
  std::array<char, 16'384> piece{};
  while (stream.pipe) {
    const ssize_t count = ::read(stream.pipe.Get(), piece.data(), piece.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 && errno == EAGAIN) return;
    if (count <= 0) stream.pipe.Reset();
    stream.begun.append(piece.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    TakeLines(stream.begun, stream.take);
  }
}

void ToolRun::AskToStop() const {
  if (process_ > 0) ::kill(process_, SIGTERM);
}

int ToolRun::Wait() {
  if (process_ <= 0) return 0;
  int status = 0;
  while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
  }
  process_ = 0;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace apps

#include "tests/kernel/cases/Command.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>

#include "base/FileDescriptor.h"
#include "tests/kernel/cases/Tap.h"

namespace {

using Clock = std::chrono::steady_clock;

// The words of execvp, which only reads them.
std::vector<char*> WordsOf(const std::vector<std::string>& arguments) {
  std::vector<char*> words;
  for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  return words;
}

[[noreturn]] void Become(char* const* words, int output) {
  ::dup2(output, STDOUT_FILENO);
  ::dup2(output, STDERR_FILENO);
  ::execvp(words[0], words);
  ::_exit(127);
}

// Reads until the program closes its output; false when that took too long.
bool ReadAll(int from, std::string& text, Clock::time_point end) {
  std::array<char, 4096> buffer{};
  while (true) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    pollfd readable{from, POLLIN, 0};
    if (left <= 0 || ::poll(&readable, 1, static_cast<int>(left)) == 0) return false;
    const ssize_t count = ::read(from, buffer.data(), buffer.size());
    if (count <= 0) return true;
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

}  // namespace

std::string Outcome::LastLine() const {
  const std::size_t end = output.find_last_not_of('\n');
  if (end == std::string::npos) return {};
  const std::size_t begin = output.rfind('\n', end);
  return output.substr(begin == std::string::npos ? 0 : begin + 1,
                       end - (begin == std::string::npos ? 0 : begin + 1) + 1);
}

Outcome RunProgram(const std::vector<std::string>& arguments, unsigned seconds) {
  std::array<int, 2> ends{};
  tap::Check(::pipe2(ends.data(), O_CLOEXEC) == 0, "no pipe");
  base::FileDescriptor from(ends[0]);
  base::FileDescriptor to(ends[1]);
  const auto words = WordsOf(arguments);
  const pid_t child = ::fork();
  if (child == 0) Become(words.data(), to.Get());
  to.Reset();
  Outcome outcome;
  if (!ReadAll(from.Get(), outcome.output, Clock::now() + std::chrono::seconds(seconds))) ::kill(child, SIGKILL);
  int status = 0;
  ::waitpid(child, &status, 0);
  outcome.code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  return outcome;
}

#include "tests/kernel/cases/Tap.h"

#include <sys/wait.h>
#include <unistd.h>

#include <exception>
#include <iostream>
#include <stdexcept>

namespace tap {
namespace {

// Seconds of the guest, which has time for every time-out that a case may run into.
constexpr unsigned kDeadline = 14'400;

[[noreturn]] void RunHere(const Case& one) {
  ::alarm(kDeadline);
  int code = 0;
  try {
    one.run();
  } catch (const std::exception& error) {
    Note(error.what());
    code = 1;
  }
  std::cout.flush();
  ::_exit(code);
}

bool Passes(const Case& one) {
  std::cout.flush();
  const pid_t child = ::fork();
  if (child == 0) RunHere(one);
  int status = 0;
  ::waitpid(child, &status, 0);
  if (WIFSIGNALED(status)) Note("ended by signal " + std::to_string(WTERMSIG(status)));
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

void Check(bool kept, const std::string& what) {
  if (!kept) throw std::runtime_error(what);
}

void Note(const std::string& text) {
  std::cout << "# " << text << std::endl;
}

int RunAll(std::span<const Case> cases) {
  int number = 0;
  int failures = 0;
  for (const Case& one : cases) {
    const bool passed = Passes(one);
    failures += passed ? 0 : 1;
    std::cout << (passed ? "ok " : "not ok ") << ++number << " - " << one.name << std::endl;
  }
  std::cout << "1.." << number << std::endl;
  return failures == 0 ? 0 : 1;
}

}  // namespace tap

#include "tests/kernel/cases/Background.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

Background::Background(const std::vector<std::string>& arguments, std::string output) : output_(std::move(output)) {
  std::vector<char*> words;
  for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  ::unlink(output_.c_str());
  process_ = ::fork();
  if (process_ != 0) return;
  const int file = ::open(output_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  ::dup2(file, STDOUT_FILENO);
  ::dup2(file, STDERR_FILENO);
  ::execvp(words[0], words.data());
  ::_exit(127);
}

Background::~Background() {
  // Also when it is stopped.
  Signal(SIGKILL);
  ::waitpid(process_, nullptr, 0);
}

void Background::Signal(int number) const {
  ::kill(process_, number);
}

std::string Background::Printed() const {
  std::ifstream file(output_);
  return {std::istreambuf_iterator<char>(file), {}};
}

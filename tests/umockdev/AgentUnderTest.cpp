#include "tests/umockdev/AgentUnderTest.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace mock {
namespace {

namespace fs = std::filesystem;

// The value of "NAME:  VALUE ..." in a file of /proc.
long ValueIn(const fs::path& file, const std::string& name) {
  std::ifstream stream(file);
  std::string line;
  while (std::getline(stream, line)) {
    if (line.rfind(name + ":", 0) == 0) return std::atol(line.c_str() + name.size() + 1);
  }
  throw std::runtime_error(file.string() + " has no " + name);
}

std::vector<std::string> ChildEnvironment(const fs::path& folder) {
  std::vector<std::string> words;
  for (char** entry = environ; *entry; ++entry) {
    const std::string word = *entry;
    if (word.rfind("LD_PRELOAD=", 0) != 0 && word.rfind("XDG_RUNTIME_DIR=", 0) != 0) words.push_back(word);
  }
  words.push_back("LD_PRELOAD=" KELVA_UMOCKDEV_PRELOAD);
  words.push_back("XDG_RUNTIME_DIR=" + folder.string());
  words.push_back("KELVA_LAUNCH_PIPE=" + (folder / "launches").string());
  return words;
}

std::vector<char*> Pointers(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

AgentUnderTest::AgentUnderTest(const std::vector<std::string>& before) {
  // The agent finds its opener beside itself.
  fs::copy_file(KELVA_HELPER_PROGRAM, folder_ / "kelva-helper");
  fs::copy_file(KELVA_LAUNCH_COUNTER, folder_ / "kelva-open");
  const std::string pipe = folder_ / "launches";
  if (::mkfifo(pipe.c_str(), 0600) != 0) throw std::runtime_error("no pipe for launches");
  launches_ = ::open(pipe.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK);
  Start(before);
}

void AgentUnderTest::Start(const std::vector<std::string>& before) {
  std::vector<std::string> words = before;
  words.push_back((folder_ / "kelva-helper").string());
  std::vector<std::string> environment = ChildEnvironment(folder_);
  const auto arguments = Pointers(words);
  const auto variables = Pointers(environment);
  process_ = ::fork();
  if (process_ < 0) throw std::runtime_error("the agent could not be started");
  if (process_ > 0) return;
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);  // a test that breaks off leaves no agent behind
  ::execvpe(arguments[0], arguments.data(), variables.data());
  ::_exit(127);
}

AgentUnderTest::~AgentUnderTest() {
  End();
  ::close(launches_);
}

bool AgentUnderTest::AwaitListening(MockMachine& machine) {
  constexpr int kAttempts = 50;
  constexpr int kPatienceMs = 200;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    machine.Plug({.serial = "FIRST", .port = 20});
    const bool launched = AwaitLaunch(kPatienceMs).has_value();
    machine.Unplug(20);
    if (!launched) continue;
    while (AwaitLaunch(kPatienceMs)) {
    }  // of an attempt before, on a machine that was slow to start the agent
    return true;
  }
  return false;
}

std::optional<std::int64_t> AgentUnderTest::AwaitLaunch(int milliseconds) {
  pollfd waiting{launches_, POLLIN, 0};
  std::int64_t nanoseconds = 0;
  if (::poll(&waiting, 1, milliseconds) <= 0) return std::nullopt;
  if (::read(launches_, &nanoseconds, sizeof nanoseconds) != sizeof nanoseconds) return std::nullopt;
  return nanoseconds;
}

bool AgentUnderTest::End() {
  if (process_ == 0) return true;
  ::kill(process_, SIGTERM);
  int status = 0;
  ::waitpid(std::exchange(process_, 0), &status, 0);
  return (WIFEXITED(status) && WEXITSTATUS(status) == 0) || (WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
}

std::size_t AgentUnderTest::OpenDescriptors() const {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(Proc() / "fd"), fs::directory_iterator()));
}

std::size_t AgentUnderTest::Threads() const {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(Proc() / "task"), fs::directory_iterator()));
}

long AgentUnderTest::MemoryKib(const std::string& line) const {
  return ValueIn(Proc() / "smaps_rollup", line);
}

long AgentUnderTest::ContextSwitches() const {
  long sum = 0;
  for (const auto& task : fs::directory_iterator(Proc() / "task")) {
    sum += ValueIn(task.path() / "status", "voluntary_ctxt_switches") +
           ValueIn(task.path() / "status", "nonvoluntary_ctxt_switches");
  }
  return sum;
}

}  // namespace mock

// What an abort leaves behind: no temporary file, one sentence, and with --json a result.
#include "apps/commandline/Aborts.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>

#include "apps/commandline/ExitCode.h"
#include "apps/commandline/Guard.h"
#include "apps/commandline/Scratch.h"

namespace apps {
namespace {

// A signal handler may only touch plain static storage and make plain system calls.
struct LastText {
  std::array<char, 512> bytes{};
  std::size_t size = 0;

  void Keep(const std::string& text) {
    size = std::min(text.size(), bytes.size());
    std::memcpy(bytes.data(), text.data(), size);
  }
  void WriteTo(int fd) const {
    if (size == 0) return;
    [[maybe_unused]] const ssize_t written = ::write(fd, bytes.data(), size);
  }
};

LastText lastWord;
LastText lastResult;
int resultDescriptor = -1;
void (*firstAction)() noexcept = nullptr;

extern "C" void OnAbort(int) {
  if (firstAction != nullptr) firstAction();
  // Noted first: other threads go on for a moment, and miss their files.
  const bool goesOn = Guard::NoteAbort();
  RemoveScratchFiles();
  // Another process takes over and will give the result.
  if (goesOn) ::_exit(static_cast<int>(ExitCode::kFailed));
  lastWord.WriteTo(STDERR_FILENO);
  lastResult.WriteTo(resultDescriptor);
  ::_exit(static_cast<int>(ExitCode::kFailed));
}

}  // namespace

void CatchAborts(const std::string& word, const std::string& result, int resultFd) {
  lastWord.Keep(word);
  lastResult.Keep(result);
  resultDescriptor = resultFd;
  struct sigaction action = {};
  action.sa_handler = OnAbort;
  sigfillset(&action.sa_mask);
  ::sigaction(SIGABRT, &action, nullptr);
}

void AtAbort(void (*action)() noexcept) {
  firstAction = action;
}

}  // namespace apps

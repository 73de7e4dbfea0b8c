// Keeps what libraries print out of the tool's results.
#include "apps/commandline/StdoutDiversion.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>

#include "apps/commandline/Failure.h"

namespace apps {

StdoutDiversion::StdoutDiversion()
    : real_(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3)), memory_(::memfd_create("stdout", MFD_CLOEXEC)) {
  std::fflush(stdout);  // what the program has printed before is its own
  if (!memory_ || ::dup2(memory_.Get(), STDOUT_FILENO) < 0) throw SystemFailure("set standard output aside", errno);
}

StdoutDiversion::~StdoutDiversion() {
  std::fflush(stdout);
  if (real_) ::dup2(real_.Get(), STDOUT_FILENO);
}

std::string StdoutDiversion::Taken() {
  std::fflush(stdout);
  std::array<char, 4096> text{};
  const ssize_t size = ::pread(memory_.Get(), text.data(), text.size(), 0);
  if (size <= 0) return {};
  // The descriptors share one offset, so both go back to the start.
  ::lseek(memory_.Get(), 0, SEEK_SET);
  if (::ftruncate(memory_.Get(), 0) != 0) throw SystemFailure("empty the memory behind standard output", errno);
  return std::string(text.data(), static_cast<std::size_t>(size));
}

void FillStandardDescriptors() {
  for (int fd = 0; fd <= 2; ++fd) {
    if (::fcntl(fd, F_GETFD) >= 0) continue;
    // Read-only for output too, so that writing a result there fails and is reported.
    if (::open("/dev/null", fd == 2 ? O_WRONLY : O_RDONLY) < 0) return;
  }
}

}  // namespace apps

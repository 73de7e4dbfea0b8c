// Keeps what libraries print out of the tool's results.
#include "apps/commandline/StdoutDiversion.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>

#include "apps/commandline/Failure.h"
#include "platform/Sockets.h"

namespace apps {

StdoutDiversion::StdoutDiversion() : real_(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3)) {
  std::fflush(stdout);  // what the program has printed before is its own
  std::array<int, 2> ends{-1, -1};
  if (platform::Pipe(ends) != 0) throw SystemFailure("set standard output aside", errno);
  printed_.Reset(ends[0]);
  const base::FileDescriptor write(ends[1]);
  // What does not fit is lost: a library that prints must not have to wait for a reader.
  for (const int end : ends) platform::SetNonBlocking(end);
  if (::dup2(write.Get(), STDOUT_FILENO) < 0) throw SystemFailure("set standard output aside", errno);
}

StdoutDiversion::~StdoutDiversion() {
  Empty();
  if (real_) ::dup2(real_.Get(), STDOUT_FILENO);
}

std::string StdoutDiversion::Taken() {
  std::fflush(stdout);
  std::array<char, 4096> text{};
  const ssize_t size = ::read(printed_.Get(), text.data(), text.size());
  Empty();
  return std::string(text.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
}

// What waits in the buffer of a full pipe must not come out later, at the real standard output.
void StdoutDiversion::Empty() {
  std::array<char, 4096> rest{};
  for (int i = 0; i < 2; ++i) {
    while (::read(printed_.Get(), rest.data(), rest.size()) > 0) {
    }
    std::fflush(stdout);
  }
}

void FillStandardDescriptors() {
  for (int fd = 0; fd <= 2; ++fd) {
    if (::fcntl(fd, F_GETFD) >= 0) continue;
    // Read-only for output too, so that writing a result there fails and is reported.
    if (::open("/dev/null", fd == 2 ? O_WRONLY : O_RDONLY) < 0) return;
  }
}

}  // namespace apps

#include "apps/commandline/Output.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

#include "apps/commandline/Failure.h"

namespace apps {

int WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

void Output::Flush() {
  const std::string pending = std::exchange(pending_, {});
  const int error = WriteAll(fd_, pending);
  if (error != 0) throw SystemFailure("write to standard output", error);
}

bool Output::IsTerminal() const {
  return ::isatty(fd_) == 1;
}

}  // namespace apps

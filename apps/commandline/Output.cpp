// Standard output: collects results and writes them whole.
#include "apps/commandline/Output.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

#include "apps/commandline/Failure.h"
#include "base/SendAll.h"

namespace apps {

void Output::Flush() {
  WriteAll(std::exchange(pending_, {}));
}

void Output::Write(std::string_view bytes) {
  Flush();
  WriteAll(bytes);
}

void Output::WriteAll(std::string_view bytes) {
  const int error = base::WriteAll(fd_, bytes);
  if (error == EPIPE) throw ReaderGone();
  if (error != 0) throw SystemFailure("write to standard output", error);
}

bool Output::IsTerminal() const {
  return ::isatty(fd_) == 1;
}

}  // namespace apps

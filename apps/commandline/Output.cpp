// Standard output: collects results and writes them whole.
#include "apps/commandline/Output.h"

#include <unistd.h>

#include <utility>

#include "apps/commandline/Failure.h"
#include "base/SendAll.h"

namespace apps {

void Output::Flush() {
  const std::string pending = std::exchange(pending_, {});
  const int error = base::WriteAll(fd_, pending);
  if (error != 0) throw SystemFailure("write to standard output", error);
}

void Output::Write(std::string_view bytes) {
  Flush();
  const int error = base::WriteAll(fd_, bytes);
  if (error != 0) throw SystemFailure("write to standard output", error);
}

bool Output::IsTerminal() const {
  return ::isatty(fd_) == 1;
}

}  // namespace apps

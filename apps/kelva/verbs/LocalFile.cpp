// Reads a file of this computer that is to be sent to a camera.
#include "apps/kelva/verbs/LocalFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "base/FileDescriptor.h"

namespace apps {
namespace {

unsigned long long CheckedSize(int fd, const std::string& path, unsigned long long most) {
  struct stat status {};
  if (::fstat(fd, &status) != 0) throw SystemFailure("look at " + Printable(path), errno);
  if (!S_ISREG(status.st_mode)) {
    throw Failure(ExitCode::kFailed, Printable(path) + " is not a regular file; only files can be sent to a camera.");
  }
  const auto size = static_cast<unsigned long long>(status.st_size);
  if (size > most) {
    throw Failure(ExitCode::kFailed, Printable(path) + " has " + std::to_string(size) + " bytes; a camera takes " +
                                         std::to_string(most) + " at most in one file.");
  }
  return size;
}

}  // namespace

std::vector<char> ReadLocalFile(const std::string& path, unsigned long long most) {
  const base::FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file) throw SystemFailure("open " + Printable(path), errno);
  std::vector<char> bytes(CheckedSize(file.Get(), path, most));
  std::size_t got = 0;
  while (got < bytes.size()) {
    const ssize_t size = ::read(file.Get(), bytes.data() + got, bytes.size() - got);
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) throw SystemFailure("read " + Printable(path), errno);
    if (size == 0) throw Failure(ExitCode::kFailed, Printable(path) + " became shorter while it was read; try again.");
    got += static_cast<std::size_t>(size);
  }
  return bytes;
}

}  // namespace apps

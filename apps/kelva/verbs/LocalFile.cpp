// Reads a file of this computer that is to be sent to a camera.
#include "apps/kelva/verbs/LocalFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <utility>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/Sha1.h"

namespace apps {
namespace {

std::uint32_t CheckedSize(int fd, const std::string& path, std::uint32_t most) {
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
  return static_cast<std::uint32_t>(size);
}

}  // namespace

LocalFile::LocalFile(std::string path, std::uint32_t most)
    : path_(std::move(path)), file_(::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
  if (!file_) throw SystemFailure("open " + Printable(path_), errno);
  size_ = CheckedSize(file_.Get(), path_, most);
}

void LocalFile::Read(std::span<char> into) {
  while (!into.empty()) {
    const ssize_t size = ::pread(file_.Get(), into.data(), into.size(), at_);
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) throw SystemFailure("read " + Printable(path_), errno);
    if (size == 0) throw Failure(ExitCode::kFailed, Printable(path_) + " became shorter while it was read; try again.");
    into = into.subspan(static_cast<std::size_t>(size));
    at_ += size;
  }
}

std::string LocalFile::Head(std::size_t most) const {
  std::string head(most, '\0');
  ssize_t size = 0;
  do {
    size = ::pread(file_.Get(), head.data(), head.size(), 0);
  } while (size < 0 && errno == EINTR);
  if (size < 0) throw SystemFailure("read " + Printable(path_), errno);
  head.resize(static_cast<std::size_t>(size));
  return head;
}

std::string LocalFile::Sha1() const {
  std::optional<std::string> sum = Sha1OfFile(file_.Get());
  if (!sum) throw SystemFailure("read " + Printable(path_), errno);
  return *std::move(sum);
}

}  // namespace apps

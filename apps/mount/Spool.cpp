// A file without a name.
#include "apps/mount/Spool.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"

namespace apps {
namespace {

std::string Folder() {
  const char* folder = std::getenv("TMPDIR");
  return folder != nullptr && *folder != '\0' ? folder : "/var/tmp";
}

}  // namespace

// In /var/tmp, because /tmp may be memory, and a file of a camera large.
Spool::Spool() {
  std::string name = Folder() + "/kelva-mount-XXXXXX";
  file_.Reset(::mkostemp(name.data(), O_CLOEXEC));
  if (!file_) throw SystemFailure("make a file in " + Printable(Folder()), errno);
  ::unlink(name.c_str());
}

void Spool::Write(std::uint64_t offset, std::span<const char> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::pwrite(file_.Get(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw SystemFailure("write a temporary file in " + Printable(Folder()), errno);
    offset += static_cast<std::uint64_t>(count);
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  size_ = std::max(size_, offset);
}

void Spool::Resize(std::uint64_t size) {
  if (::ftruncate(file_.Get(), static_cast<off_t>(size)) != 0) throw SystemFailure("write a temporary file", errno);
  size_ = size;
}

void Spool::Read(std::uint64_t offset, std::span<char> into) const {
  while (!into.empty()) {
    const ssize_t count = ::pread(file_.Get(), into.data(), into.size(), static_cast<off_t>(offset));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) throw SystemFailure("read a temporary file", count < 0 ? errno : EIO);
    offset += static_cast<std::uint64_t>(count);
    into = into.subspan(static_cast<std::size_t>(count));
  }
}

}  // namespace apps

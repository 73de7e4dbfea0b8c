// Chooses the number in the names of a picture's files.
#include "apps/import/Names.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <functional>

#include "apps/camera/Picture.h"
#include "apps/files/FileCalls.h"
#include "apps/files/Sha1.h"
#include "apps/files/StoreFile.h"

namespace apps {
namespace {

// As BesideFile: more files of one name are somebody's mistake.
constexpr int kMost = 10'000;

// A path without its extension: what programs pair files by.
std::string Stem(const std::string& path) {
  const std::size_t name = path.rfind('/') + 1;
  const std::size_t dot = path.rfind('.');
  return dot == std::string::npos || dot <= name ? path : path.substr(0, dot);
}

}  // namespace

std::string Names::Path(const DcfObj& picture, int type, int number) const {
  LocalPath path = pattern_.Apply(picture, type, serial_);
  path.name = Numbered(path.name, number);
  return path.Text();
}

bool Names::IsThere(const std::string& path) const {
  struct stat status {};
  return folder_ != nullptr && ::fstatat(folder_->Fd(), path.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

bool Names::IsFree(const DcfObj& picture, int number, int except) const {
  for (int type = kFirstFileType; type <= kLastFileType; ++type) {
    if (type != except && IsThere(Path(picture, type, number))) return false;
  }
  return true;
}

// Whether the picture's first file is here already under this number: the folder lost its list.
bool Names::IsTheSame(const DcfObj& picture, int number) const {
  const auto key = PictureKey(picture);
  if (!key || folder_ == nullptr) return false;
  const std::string path = Path(picture, FileTypes(picture).front(), number);
  if (!IsThere(path)) return false;
  const base::FileDescriptor file(OpenBeneath(folder_->Fd(), path, O_RDONLY | O_NONBLOCK));
  struct stat status {};
  if (!file || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  return Sha1OfFile(file.Get()) == key;
}

int Names::NumberFor(const DcfObj& picture, const std::string& stored, int storedType) {
  const auto claim = [&](int number) {
    return taken_.insert(std::hash<std::string>()(Stem(Path(picture, kFirstFileType, number)))).second;
  };
  for (int number = 1; !stored.empty() && number <= kMost; ++number) {
    const std::string path = Path(picture, storedType, number);
    if (path == stored && IsFree(picture, number, storedType) && claim(number)) return number;
    if (!IsThere(path)) break;
  }
  for (int number = 1; number <= kMost; ++number) {
    if ((IsFree(picture, number, 0) || IsTheSame(picture, number)) && claim(number)) return number;
  }
  return kMost;
}

}  // namespace apps

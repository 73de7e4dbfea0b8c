// Finds files beside a contact sheet that `kelva sync` fetched before.
#include "apps/kelva/sheet/Beside.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "apps/camera/Picture.h"
#include "apps/files/FileCalls.h"
#include "apps/files/SafeName.h"
#include "apps/files/Sha1.h"
#include "base/FileDescriptor.h"

namespace apps {
namespace {

base::FileDescriptor OpenHere(const TargetFolder& folder, const std::string& path) {
  return base::FileDescriptor(OpenBeneath(folder.Fd(), path, O_RDONLY | O_NONBLOCK));
}

bool IsFileOf(const base::FileDescriptor& file, unsigned long long size) {
  struct stat status {};
  return file && ::fstat(file.Get(), &status) == 0 && S_ISREG(status.st_mode) &&
         static_cast<unsigned long long>(status.st_size) == size;
}

bool ReadAll(const base::FileDescriptor& file, std::vector<char>& bytes) {
  std::size_t got = 0;
  while (got < bytes.size()) {
    const ssize_t size = ::read(file.Get(), bytes.data() + got, bytes.size() - got);
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return false;
    got += static_cast<std::size_t>(size);
  }
  return true;
}

}  // namespace

Beside::Beside(const TargetFolder& folder, Manifest& manifest, std::string serial, const std::vector<DcfObj>& catalogue)
    : folder_(folder), manifest_(manifest), serial_(std::move(serial)) {
  for (const DcfObj& picture : catalogue) ++stems_[PictureStem(picture)];
}

std::string Beside::Find(const DcfObj& picture, int type, std::optional<unsigned long long> size) {
  const auto known = Known(picture, type);
  if (known && IsHere(known->path, known->size)) return known->path;
  if (!size) return "";
  std::string local = pattern_.Apply(picture, type, serial_, std::nullopt).Text();
  if (IsHere(local, *size)) return local;
  // Of two pictures with one name, a file without their folder could be either.
  const std::string plain = SafeName(PictureFileName(picture, type));
  const auto same = stems_.find(PictureStem(picture));
  const bool unique = same != stems_.end() && same->second == 1;
  return unique && IsHere(plain, *size) ? plain : "";
}

std::optional<std::vector<char>> Beside::Read(const DcfObj& picture, int type) {
  const auto known = Known(picture, type);
  if (!known) return std::nullopt;
  const base::FileDescriptor file = OpenHere(folder_, known->path);
  if (!IsFileOf(file, known->size)) return std::nullopt;
  std::vector<char> bytes(known->size);
  if (!ReadAll(file, bytes) || Sha1(bytes) != known->sha1) return std::nullopt;
  return bytes;
}

std::optional<ManifestRow> Beside::Known(const DcfObj& picture, int type) {
  KnownPicture known = FindPicture(manifest_, picture, serial_);
  const auto row = known.rows.find(type);
  return row == known.rows.end() ? std::nullopt : std::optional(std::move(row->second));
}

bool Beside::IsHere(const std::string& path, unsigned long long size) const {
  return IsFileOf(OpenHere(folder_, path), size);
}

}  // namespace apps

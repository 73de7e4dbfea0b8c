#include "sheet/Beside.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "camera/Picture.h"
#include "files/SafeName.h"
#include "files/Sha1.h"
#include "frame/Descriptor.h"

namespace kelva {
namespace {

Descriptor OpenHere(const TargetFolder& folder, const std::string& path) {
  return Descriptor(OpenBeneath(folder.Fd(), path, O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0));
}

bool IsFileOf(const Descriptor& file, unsigned long long size) {
  struct stat status {};
  return file && ::fstat(file.Get(), &status) == 0 && S_ISREG(status.st_mode) &&
         static_cast<unsigned long long>(status.st_size) == size;
}

bool ReadAll(const Descriptor& file, std::vector<char>& bytes) {
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

Beside::Beside(const TargetFolder& folder, Manifest manifest, std::string serial, const std::vector<DcfObj>& catalogue)
    : folder_(folder), manifest_(std::move(manifest)), serial_(std::move(serial)) {
  for (const DcfObj& picture : catalogue) ++stems_[PictureStem(picture)];
}

std::string Beside::Find(const DcfObj& picture, int type, std::optional<unsigned long long> size) {
  const SyncItem item = Item(picture, type);
  if (item.known && IsHere(item.known->path, item.known->size)) return item.known->path;
  if (!size) return "";
  if (IsHere(item.local.Text(), *size)) return item.local.Text();
  // Of two pictures with one name, a file without their folder could be either.
  const std::string plain = SafeName(PictureFileName(picture, type));
  const auto same = stems_.find(PictureStem(picture));
  const bool unique = same != stems_.end() && same->second == 1;
  return unique && IsHere(plain, *size) ? plain : "";
}

std::optional<std::vector<char>> Beside::Read(const DcfObj& picture, int type) {
  const SyncItem item = Item(picture, type);
  if (!item.known) return std::nullopt;
  const Descriptor file = OpenHere(folder_, item.known->path);
  if (!IsFileOf(file, item.known->size)) return std::nullopt;
  std::vector<char> bytes(item.known->size);
  if (!ReadAll(file, bytes) || Sha1(bytes) != item.known->sha1) return std::nullopt;
  return bytes;
}

SyncItem Beside::Item(const DcfObj& picture, int type) {
  return MakePlan({picture}, serial_, {type}, pattern_, manifest_).items.at(0);
}

bool Beside::IsHere(const std::string& path, unsigned long long size) const {
  return IsFileOf(OpenHere(folder_, path), size);
}

}  // namespace kelva

// Counts what a sync will write, and compares it with the room there is.
#include "apps/import/Coming.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>

#include "apps/commandline/Printable.h"
#include "apps/commandline/Words.h"
#include "apps/files/StoreFile.h"

namespace apps {
namespace {

// Under the names under which it would be found before it is written. Another file of this size only hides some bytes
// that are needed.
bool IsHere(const SyncItem& item, unsigned long long size, const TargetFolder& folder) {
  constexpr int kMostBefore = 100;
  LocalPath path = item.Local();
  const std::string name = path.name;
  for (int number = std::max(1, item.Number() - kMostBefore); number <= item.Number(); ++number) {
    path.name = Numbered(name, number);
    if (HasFileOfSize(folder, path.Text(), size)) return true;
  }
  return false;
}

// The bytes that are here of files whose transfers were cut.
unsigned long long BytesOfParts(Manifest& manifest, const TargetFolder& folder, const std::string& serial) {
  unsigned long long bytes = 0;
  for (const CutRow& row : manifest.Cuts()) {
    if (row.key.serial != serial) continue;
    struct stat status {};
    const bool is = ::fstatat(folder.Fd(), row.path.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    if (is && S_ISREG(status.st_mode)) bytes += static_cast<unsigned long long>(status.st_size);
  }
  return bytes;
}

}  // namespace

bool HasFileOfSize(const TargetFolder& folder, const std::string& path, unsigned long long size) {
  struct stat status {};
  return ::fstatat(folder.Fd(), path.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(status.st_mode) &&
         static_cast<unsigned long long>(status.st_size) == size;
}

void Coming::Add(const Coming& more) {
  files += more.files;
  bytes += more.bytes;
  unlisted += more.unlisted;
}

void Coming::Add(std::optional<unsigned long long> size) {
  ++files;
  if (size) {
    bytes += *size;
  } else {
    ++unlisted;
  }
}

std::string Coming::Text() const {
  std::string text = Counted(files, "file") + " (" + Bytes(bytes);
  if (unlisted != 0) text += ", and " + std::to_string(unlisted) + " of unknown size";
  return text + ")";
}

std::optional<unsigned long long> ListedSize(const SyncItem& item, ListedSizes& sizes) {
  return item.IsPicture() ? sizes.SizeOf(item.CameraPath()) : item.Other().size;
}

Coming ToBeWritten(const SyncPlan& plan, ListedSizes& sizes, const TargetFolder* folder, Manifest& manifest) {
  Coming coming;
  for (const SyncItem& item : plan.items) {
    if (!item.IsNew()) continue;
    const auto size = ListedSize(item, sizes);
    if (!size || folder == nullptr || !IsHere(item, *size, *folder)) coming.Add(size);
  }
  if (folder != nullptr) coming.TakeOff(BytesOfParts(manifest, *folder, plan.source->serial));
  return coming;
}

std::string WhyTooLittleRoom(const Coming& coming, std::optional<unsigned long long> free, const std::string& where) {
  if (!free || coming.bytes <= *free) return "";
  return "Not enough room in " + Printable(where) + ": " + coming.Text() + " to fetch, " + Bytes(*free) +
         " free; make room there, or choose another folder.";
}

}  // namespace apps

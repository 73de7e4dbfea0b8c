// Chooses the number in the names of a picture's files.
#include "apps/import/Names.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <charconv>
#include <functional>

#include "apps/camera/Picture.h"
#include "apps/files/FileCalls.h"
#include "apps/files/Sha1.h"
#include "apps/files/StoreFile.h"

namespace apps {
namespace {

// A path without its extension: what programs pair files by.
std::string Stem(const std::string& path) {
  const std::size_t name = path.rfind('/') + 1;
  const std::size_t dot = path.rfind('.');
  return dot == std::string::npos || dot <= name ? path : path.substr(0, dot);
}

// The number in `path`, which is `first` with a number; 0 when it is another name.
int NumberIn(const std::string& path, const std::string& first) {
  if (path == first) return 1;
  const std::string start = Stem(first) + "-";
  const std::string end = first.substr(start.size() - 1);
  if (path.size() <= start.size() + end.size() || !path.starts_with(start) || !path.ends_with(end)) return 0;
  const char* const last = path.data() + path.size() - end.size();
  int number = 0;
  const auto [stop, error] = std::from_chars(path.data() + start.size(), last, number);
  return error == std::errc() && stop == last && number > 1 ? number : 0;
}

}  // namespace

std::string Names::Path(const DcfObj& picture, int type, int number) const {
  LocalPath path = pattern_.Apply(picture, type, serial_, pattern_.HasTime() ? timeOf_(picture) : std::nullopt);
  path.name = Numbered(path.name, number);
  return path.Text();
}

bool Names::IsThere(const std::string& path) const {
  struct stat status {};
  return folder_ != nullptr && ::fstatat(folder_->Fd(), path.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

bool Names::IsFree(const DcfObj& picture, int number, const Stored& own) const {
  for (int type = kFirstFileType; type <= kLastFileType; ++type) {
    const std::string path = Path(picture, type, number);
    const auto stored = own.find(type);
    const bool isOwn = stored != own.end() && stored->second == path;
    if (!isOwn && IsThere(path)) return false;
  }
  return true;
}

// Of the first file that is here under a number; empty when none can be read.
std::string Names::Sha1Of(const DcfObj& picture, int number) const {
  for (int type = kFirstFileType; type <= kLastFileType; ++type) {
    const std::string path = Path(picture, type, number);
    if (!IsThere(path)) continue;
    const base::FileDescriptor file(OpenBeneath(folder_->Fd(), path, O_RDONLY | O_NONBLOCK));
    struct stat status {};
    if (!file || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return "";
    return Sha1OfFile(file.Get()).value_or("");
  }
  return "";
}

// Looks at the disk once for all pictures that share a name: the folder may have lost its list.
Names::Group& Names::GroupOf(const DcfObj& picture) {
  const std::size_t name = std::hash<std::string>()(Stem(Path(picture, kFirstFileType, 1)));
  const auto [found, isNew] = groups_.try_emplace(name);
  Group& group = found->second;
  if (!isNew) return group;
  for (; !IsFree(picture, group.next); ++group.next) group.here.emplace(Sha1Of(picture, group.next), group.next);
  group.before = group.next - 1;
  return group;
}

bool Names::Claim(const DcfObj& picture, int number) {
  return taken_.insert(std::hash<std::string>()(Stem(Path(picture, kFirstFileType, number)))).second;
}

Names::Numbers Names::NumbersFor(const DcfObj& picture, const Stored& stored) {
  Numbers numbers;
  if (!stored.empty()) {
    const auto& [type, path] = *stored.begin();
    const int number = NumberIn(path, Path(picture, type, 1));
    const bool isFree = number != 0 && IsFree(picture, number, stored);
    if (isFree && Claim(picture, number)) return {number};
    if (!isFree) numbers.maybe = number;
  }
  Group& group = GroupOf(picture);
  numbers.before = group.before;
  const auto same = group.here.find(PictureKey(picture).value_or("no key"));
  if (numbers.maybe == 0 && same != group.here.end()) {
    // A file that is here already is in nobody's way.
    if (FileTypes(picture).size() == 1) return {same->second};
    numbers.maybe = same->second;
    numbers.isByKey = true;
  }
  while (!IsFree(picture, group.next) || !Claim(picture, group.next)) ++group.next;
  numbers.free = group.next++;
  return numbers;
}

}  // namespace apps

// Finds the number under which a picture's files are here already.
#include "apps/import/NumbersHere.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <optional>

#include "apps/camera/Picture.h"
#include "apps/files/FileCalls.h"
#include "apps/files/Sha1.h"
#include "apps/files/StoreFile.h"

namespace apps {
namespace {

std::string PathOf(const SyncItem& file, int number) {
  LocalPath path = file.Local();
  path.name = Numbered(path.name, number);
  return path.Text();
}

}  // namespace

int NumbersHere::For(const SyncItem& item) {
  if (!item.IsPicture()) return item.Number();
  const auto doubt = plan_.doubts.find(&item.Picture());
  if (doubt == plan_.doubts.end()) return item.Number();
  const auto known = found_.find(&item.Picture());
  if (known != found_.end()) return known->second;
  hashes_.clear();
  const int number = Find(item, doubt->second);
  found_.emplace(&item.Picture(), number);
  return number;
}

int NumbersHere::Find(const SyncItem& item, const Names::Numbers& numbers) {
  if (numbers.maybe != 0 && Fits(item, numbers.maybe)) return numbers.maybe;
  for (int number = std::max(1, numbers.before - BesideFile::kMostBefore + 1); number <= numbers.before; ++number) {
    if (number != numbers.maybe && Fits(item, number)) return number;
  }
  return numbers.free;
}

// Whether what is here under a number is the picture's, and nothing else. Files that went from the camera after they
// were fetched together with one that is still there are the picture's too.
bool NumbersHere::Fits(const SyncItem& item, int number) {
  const DcfObj& picture = item.Picture();
  const std::vector<int> types = FileTypes(picture);
  std::set<std::string> own;
  std::set<std::string> gone;
  for (int type = kFirstFileType; type <= kLastFileType; ++type) {
    const bool has = std::find(types.begin(), types.end(), type) != types.end();
    const SyncItem file(*plan_.source, picture, type);
    const std::string path = PathOf(file, number);
    struct stat status {};
    if (::fstatat(folder_.Fd(), path.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
    if (!S_ISREG(status.st_mode)) return false;
    if (has && !IsSame(file, path, static_cast<unsigned long long>(status.st_size))) return false;
    (has ? own : gone).insert(path);
  }
  if (own.empty()) return false;
  if (!gone.empty()) {
    const auto together = StoredTogether(manifest_, picture, plan_.source->serial, *own.begin());
    if (!std::includes(together.begin(), together.end(), gone.begin(), gone.end())) return false;
  }
  const std::string path = PathOf(SyncItem(*plan_.source, picture, kFirstFileType), number);
  return own.size() == types.size() || taken_.insert(path).second;
}

bool NumbersHere::IsSame(const SyncItem& file, const std::string& path, unsigned long long size) {
  const auto row = manifest_.Find(file.Key());
  if (row && row->path == path) return true;
  if (work_.files.ListedSize(file) != size) return false;
  const base::FileDescriptor here(OpenBeneath(folder_.Fd(), path, O_RDONLY | O_NONBLOCK));
  const std::optional<std::string> sha1 = here ? Sha1OfFile(here.Get()) : std::nullopt;
  if (!sha1) return false;
  if (*sha1 == file.ExpectedSha1()) return true;
  const auto known = hashes_.find(file.Type());
  const std::string& sent =
      known != hashes_.end() ? known->second : hashes_.emplace(file.Type(), work_.HashOnCamera(file)).first->second;
  return *sha1 == sent;
}

}  // namespace apps

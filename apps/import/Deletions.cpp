// Deletes on the camera what is on disk here.
#include "apps/import/Deletions.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/FileCalls.h"
#include "apps/files/Sha1.h"

namespace apps {
namespace {

constexpr std::size_t kMostInGroup = 256;
constexpr std::chrono::milliseconds kGroupTime{500};

}  // namespace

Deletions::~Deletions() {
  try {
    Finish();
  } catch (const std::exception&) {
    // The next run does not find these files in the catalogue.
  }
}

std::string Deletions::Delete(const SyncItem& item) {
  std::string why = WhyNot(item);
  if (!why.empty()) return why;
  const std::string path = item.CameraPath();
  if (!camera_.DeleteFile(path.c_str())) return "The camera refused to delete " + ShownPath(path) + ".";
  unmarked_.push_back(item.Key());
  if (unmarked_.size() >= kMostInGroup || Clock::now() - lastGroup_ >= kGroupTime) Finish();
  return "";
}

void Deletions::Finish() {
  manifest_.MarkDeleted(std::exchange(unmarked_, {}));
  lastGroup_ = Clock::now();
}

// Looks at the file here once more: only what is still what was fetched may go on the camera.
std::string Deletions::WhyNot(const SyncItem& item) {
  const auto row = manifest_.Find(item.Key());
  const std::string here = Printable(row ? row->path : item.LocalText());
  const std::string kept = ", so the file on the camera was not deleted.";
  if (!row) return here + " was not fetched" + kept;
  const base::FileDescriptor file(OpenBeneath(folder_.Fd(), row->path, O_RDONLY | O_NONBLOCK));
  struct stat status {};
  if (!file && errno != ENOENT && errno != ENOTDIR) return here + " cannot be read" + kept;
  if (!file) return here + " is not where it was stored" + kept;
  if (::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return here + " is no longer a file" + kept;
  const bool same = static_cast<unsigned long long>(status.st_size) == row->size && Sha1OfFile(file.Get()) == row->sha1;
  return same ? "" : here + " was edited after it was fetched" + kept;
}

}  // namespace apps

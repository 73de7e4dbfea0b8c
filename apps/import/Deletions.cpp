// Deletes on the camera what is on disk here.
#include "apps/import/Deletions.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Picture.h"
#include "apps/camera/PictureList.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/FileCalls.h"
#include "apps/files/Sha1.h"

namespace apps {
namespace {

std::string IdentityOf(const DcfObj& picture) {
  return {reinterpret_cast<const char*>(&picture), offsetof(DcfObj, hasJpg)};
}

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
  const auto row = manifest_.Find(item.Key());
  std::string why = WhyNotHere(item, row);
  if (!why.empty()) return why;
  const std::string path = item.CameraPath();
  if (!IsAsFetched(item, *row)) {
    return ShownPath(path) +
           " is no longer what was fetched from there; it was not deleted, and `kelva get` fetches it as it is now.";
  }
  if (!camera_.DeleteFile(path.c_str())) return "The camera refused to delete " + ShownPath(path) + ".";
  unmarked_.push_back(item.Key());
  if (unmarked_.size() >= kMostInGroup || Clock::now() - lastGroup_ >= kGroupTime) Finish();
  return "";
}

void Deletions::Finish() {
  manifest_.MarkDeleted(std::exchange(unmarked_, {}));
  lastGroup_ = Clock::now();
}

void Deletions::Renew() {
  catalogue_.reset();
  sizes_.reset();
}

// A picture's entry in the catalogue, the listed size, and the content, as the entry's key says or as it is read now.
bool Deletions::IsAsFetched(const SyncItem& item, const ManifestRow& row) {
  if (!catalogue_) {
    std::map<std::string, DcfObj> catalogue;
    for (const DcfObj& picture : ReadPictures(camera_)) catalogue.emplace(IdentityOf(picture), picture);
    sizes_.emplace(camera_);
    catalogue_ = std::move(catalogue);
  }
  if (item.IsPicture()) {
    const auto entry = catalogue_->find(IdentityOf(item.Picture()));
    if (entry == catalogue_->end() || EntryBytes(entry->second) != EntryBytes(item.Picture())) return false;
  }
  if (sizes_->SizeOf(item.CameraPath()) != row.size) return false;
  return row.sha1 == item.ExpectedSha1() || hash_(item) == row.sha1;
}

// Looks at the file here once more: only what is still what was fetched may go on the camera.
std::string Deletions::WhyNotHere(const SyncItem& item, const std::optional<ManifestRow>& row) const {
  const std::string here = Printable(row ? row->path : item.LocalText());
  const std::string kept = ", so the file on the camera was not deleted.";
  if (!row) return here + " was not fetched" + kept;
  if (row->IsLetGo()) return "";
  switch (StateOf(*row, folder_)) {
    case StoredState::kSame:
      return "";
    case StoredState::kEdited:
      return here + " was edited after it was fetched" + kept;
    case StoredState::kGone:
      return here +
             " is not where it was stored, so the file on the camera was not deleted; `kelva sync --forget` lets it "
             "go.";
    case StoredState::kNoFile:
      return here + " is no longer a file" + kept;
    case StoredState::kUnreadable:
      break;
  }
  return here + " cannot be read" + kept;
}

StoredState StateOf(const ManifestRow& row, const TargetFolder& folder) {
  const base::FileDescriptor file(OpenBeneath(folder.Fd(), row.path, O_RDONLY | O_NONBLOCK));
  if (!file) return errno == ENOENT || errno == ENOTDIR ? StoredState::kGone : StoredState::kUnreadable;
  struct stat status {};
  if (::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return StoredState::kNoFile;
  const bool same = static_cast<unsigned long long>(status.st_size) == row.size && Sha1OfFile(file.Get()) == row.sha1;
  return same ? StoredState::kSame : StoredState::kEdited;
}

}  // namespace apps

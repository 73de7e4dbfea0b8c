// Deletes on the camera what is on disk here.
#include "apps/import/Deletions.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
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

constexpr std::size_t kLookedUpAtOnce = 64;
constexpr std::size_t kMostInGroup = 1024;
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
  const auto row = RowOf(item);
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

std::optional<ManifestRow> Deletions::RowOf(const SyncItem& item) {
  while (!rows_.empty() && rows_.front().first != &item) rows_.pop_front();  // files that were left out
  if (rows_.empty()) LookUpFrom(item);
  auto row = std::move(rows_.front().second);
  rows_.pop_front();
  return row;
}

void Deletions::LookUpFrom(const SyncItem& item) {
  const Manifest::Reading reading(manifest_);
  rows_.emplace_back(&item, manifest_.Find(item.Key()));
  const auto at = std::find(expected_.begin(), expected_.end(), &item);
  expected_ = {at == expected_.end() ? at : at + 1, expected_.end()};
  for (const SyncItem* const next : expected_.first(std::min(expected_.size(), kLookedUpAtOnce))) {
    rows_.emplace_back(next, manifest_.Find(next->Key()));
  }
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
  if (row->MayGo()) return "";
  if (row->IsLetGo()) {
    return ShownPath(item.CameraPath()) + " came back to the camera and is not here" + kept +
           " `kelva sync --forget` lets it go once more.";
  }
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

// The storage that hosts see: the folder itself, or the folder below what they have changed.
#include "vcam/device/Storage.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <set>

#include "vcam/device/PrivateFolder.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

std::string ParentOf(const std::string& path) {
  const std::size_t end = path.rfind('/');
  return end == std::string::npos ? "" : path.substr(0, end);
}

std::string Join(const std::string& directory, const std::string& name) {
  return directory.empty() ? name : directory + "/" + name;
}

bool IsReadOnly(const OpenedFile& opened) {
  struct stat status {};
  return ::fstat(opened.file.Get(), &status) == 0 && (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace

struct Storage::View {
  PrivateFolder place{};
  StorageFolder written{place.Path()};
  /// Paths of files that hosts have replaced or deleted; the folder is not asked for them any more.
  std::set<std::string> hidden{};

  /// Whether the folder's file of this path, or a file in place of one of its directories, is hidden.
  bool Hides(const std::string& path) const {
    return !path.empty() && (hidden.contains(path) || Hides(ParentOf(path)));
  }
  /// Makes the directory, and those above it, in the private folder.
  int MakeAll(const std::string& directory) const {
    if (directory.empty() || written.HasDirectory(directory)) return 0;
    const int error = MakeAll(ParentOf(directory));
    return error != 0 ? error : written.MakeDirectory(directory);
  }
};

Storage::Storage(const std::filesystem::path& folder, Keep keep)
    : folder_(folder), view_(keep == Keep::kInView ? std::make_unique<View>() : nullptr) {}

Storage::~Storage() = default;
Storage::Storage(Storage&&) noexcept = default;

OpenedFile Storage::OpenBelow(const std::string& path) const {
  return view_->Hides(path) ? OpenedFile{{}, ENOENT} : folder_.OpenForReading(path);
}

OpenedFile Storage::OpenForReading(const std::string& path) const {
  if (!view_) return folder_.OpenForReading(path);
  OpenedFile written = view_->written.OpenForReading(path);
  return written.error == ENOENT ? OpenBelow(path) : std::move(written);
}

/// Refuses what the folder would refuse, and makes the way to the file in the private folder.
int Storage::PrepareToWrite(const std::string& path) const {
  const OpenedFile below = OpenBelow(path);
  if (!below.file && below.error != ENOENT) return below.error;
  if (below.file && IsReadOnly(below)) return EACCES;
  if (!HasDirectory(ParentOf(path))) return ENOENT;
  return view_->MakeAll(ParentOf(path));
}

OpenedFile Storage::OpenForWriting(const std::string& path) const {
  if (!view_) return folder_.OpenForWriting(path);
  if (const int error = PrepareToWrite(path); error != 0) return {{}, error};
  OpenedFile opened = view_->written.OpenForWriting(path);
  if (opened.file) view_->hidden.insert(path);
  return opened;
}

int Storage::Remove(const std::string& path) const {
  if (!view_) return folder_.Remove(path);
  if (view_->Hides(path)) return view_->written.Remove(path);
  const OpenedFile below = OpenBelow(path);
  if (!below.file) return below.error;
  view_->hidden.insert(path);
  return 0;
}

int Storage::MakeDirectory(const std::string& path) const {
  if (!view_) return folder_.MakeDirectory(path);
  if (HasDirectory(path)) return 0;
  if (OpenBelow(path).error != ENOENT) return EEXIST;
  if (!HasDirectory(ParentOf(path))) return ENOENT;
  const int error = view_->MakeAll(ParentOf(path));
  return error != 0 ? error : view_->written.MakeDirectory(path);
}

bool Storage::HasDirectory(const std::string& path) const {
  return (view_ && view_->written.HasDirectory(path)) || folder_.HasDirectory(path);
}

std::vector<StorageEntry> Storage::List(const std::string& path) const {
  std::vector<StorageEntry> below = folder_.List(path);
  if (!view_) return below;
  std::vector<StorageEntry> entries = view_->written.List(path);
  std::set<std::string> names;
  for (const StorageEntry& entry : entries) names.insert(entry.name);
  for (StorageEntry& entry : below) {
    if (!names.contains(entry.name) && !view_->Hides(Join(path, entry.name))) entries.push_back(std::move(entry));
  }
  std::sort(entries.begin(), entries.end(),
            [](const StorageEntry& a, const StorageEntry& b) { return a.name < b.name; });
  return entries;
}

int Storage::Replace(const std::string& path, std::string_view content, unsigned mode) const {
  if (!view_) return folder_.Replace(path, content, mode);
  if (const int error = PrepareToWrite(path); error != 0) return error;
  const int error = view_->written.Replace(path, content, mode);
  if (error == 0) view_->hidden.insert(path);
  return error;
}

wire::Sense SenseOfErrno(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
    case EISDIR:
    case ELOOP:
    case EXDEV:
    case ENXIO:
      return sense::kNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case ETXTBSY:
      return sense::kWriteProtected;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return sense::kStorageFull;
    case ENAMETOOLONG:
    case EINVAL:
      return sense::kBadParameter;
    default:
      return sense::kReadError;
  }
}

}  // namespace vcam

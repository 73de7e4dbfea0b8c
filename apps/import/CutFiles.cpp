// Finds the parts of files whose transfers were cut.
#include "apps/import/CutFiles.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>

#include "apps/files/FileCalls.h"

namespace apps {
namespace {

std::string FolderIn(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "" : path.substr(0, slash);
}

std::string NameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

// The list may have been changed by somebody else: nothing but a temporary file is touched on its word.
bool IsTemporary(const std::string& path) {
  const std::string name = NameOf(path);
  return name.starts_with(kTemporaryStart) && name.ends_with(kTemporaryEnd);
}

}  // namespace

CutFiles::CutFiles(const TargetFolder& target, Manifest& manifest)
    : target_(target), manifest_(manifest), rows_(manifest.Cuts()) {}

bool CutFiles::Keeps(const std::string& path) const {
  return std::any_of(rows_.begin(), rows_.end(), [&path](const CutRow& row) { return row.path == path; });
}

const CutRow* CutFiles::Find(const ManifestKey& key) const {
  const auto row = std::find_if(rows_.begin(), rows_.end(), [&key](const CutRow& r) { return r.key == key; });
  return row == rows_.end() ? nullptr : &*row;
}

void CutFiles::DropIf(const std::function<bool(const ManifestKey&)>& isGone) {
  for (const CutRow& row : rows_) {
    if (isGone(row.key)) Remove(row);
  }
}

// The row first: a file without a row is swept, and a row without its file is passed over.
void CutFiles::Remove(const CutRow& row) {
  manifest_.ForgetCuts({row.key});
  if (!IsTemporary(row.path)) return;
  const base::FileDescriptor in = FolderOf(row);
  if (in) ::unlinkat(in.Get(), NameOf(row.path).c_str(), 0);
}

base::FileDescriptor CutFiles::FolderOf(const CutRow& row) const {
  const std::string folder = FolderIn(row.path);
  return base::FileDescriptor(OpenBeneath(target_.Fd(), folder.empty() ? "." : folder, O_RDONLY | O_DIRECTORY));
}

// A run that is killed in between leaves a part without a row, which the next one sweeps.
bool CutFiles::Bring(CutRow& row, const std::string& path, const TargetFolder& folder) {
  if (row.path == path) return true;
  const base::FileDescriptor from = FolderOf(row);
  const auto move = [&] { return FileCalls::Current().Move(from.Get(), NameOf(path), folder.Fd()); };
  if (!from || folder.Has(NameOf(path)) || UntilDone(move) != 0) return false;
  row.path = path;
  manifest_.RecordCut(row);
  return true;
}

std::optional<Part> CutFiles::TakeUp(const ManifestKey& key, unsigned long long size, const LocalPath& path,
                                     const TargetFolder& folder) {
  const CutRow* const found = Find(key);
  if (found == nullptr) return std::nullopt;
  CutRow row = *found;
  const LocalPath part{path.folders, NameOf(row.path)};
  if (row.size == size && IsTemporary(row.path) && Bring(row, part.Text(), folder)) {
    std::unique_ptr<NewFile> file = NewFile::TakeUp(folder, part.name);
    const unsigned long long here = file ? file->Size() : 0;
    if (here != 0 && here <= size) {
      const bool isWhole = here == size && row.compared < size;
      return Part{std::move(file), here, isWhole ? row.compared : 0, row.sha1};
    }
  }
  Remove(row);
  return std::nullopt;
}

}  // namespace apps

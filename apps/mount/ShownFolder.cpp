// Gives the entries of a camera's folder names that are safe here.
#include "apps/mount/ShownFolder.h"

#include <algorithm>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Picture.h"
#include "apps/files/SafeName.h"
#include "base/Ascii.h"

namespace apps {
namespace {

bool CaseLess(char a, char b) {
  return base::Lower(a) < base::Lower(b);
}

// Names that differ in case alone stand beside each other.
int Compare(std::string_view a, std::string_view b) {
  if (std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), CaseLess)) return -1;
  return std::lexicographical_compare(b.begin(), b.end(), a.begin(), a.end(), CaseLess) ? 1 : 0;
}

bool Before(const ShownEntry& a, const ShownEntry& b) {
  const int order = Compare(a.Shown(), b.Shown());
  return order != 0 ? order < 0 : a.Shown() < b.Shown();
}

std::string JpegNameFor(const std::string& shown) {
  return shown.substr(0, shown.rfind('.')) + "." + std::string(FileTypeName(kFirstFileType));
}

}  // namespace

ShownFolder::ShownFolder(const std::vector<CameraDirent>& listed) {
  entries_.reserve(listed.size());
  for (const CameraDirent& entry : listed) {
    if (!IsNamed(entry)) continue;
    std::string shown = SafeName(entry.name);
    if (shown == entry.name) shown.clear();
    const bool isFolder = (entry.attributes & kelva::kAttributeDirectory) != 0;
    entries_.push_back({entry.name, std::move(shown), isFolder ? 0 : SizeOf(entry), 0, isFolder});
  }
  std::stable_sort(entries_.begin(), entries_.end(), Before);
  const auto same = [](const ShownEntry& a, const ShownEntry& b) { return a.Shown() == b.Shown(); };
  entries_.erase(std::unique(entries_.begin(), entries_.end(), same), entries_.end());
  const auto isJpeg = [this](const ShownEntry& entry) { return JpegOf(entry) == &entry; };
  jpegs_ = static_cast<std::size_t>(std::count_if(entries_.begin(), entries_.end(), isJpeg));
}

const ShownEntry* ShownFolder::Find(std::string_view shown) const {
  const auto less = [](const ShownEntry& entry, std::string_view name) { return Compare(entry.Shown(), name) < 0; };
  const auto first = std::lower_bound(entries_.begin(), entries_.end(), shown, less);
  for (auto at = first; at != entries_.end() && Compare(at->Shown(), shown) == 0; ++at) {
    if (at->Shown() == shown) return &*at;
  }
  return first != entries_.end() && Compare(first->Shown(), shown) == 0 ? &*first : nullptr;
}

const ShownEntry* ShownFolder::JpegOf(const ShownEntry& entry) const {
  if (entry.isFolder) return nullptr;
  const ShownEntry* jpeg = Find(JpegNameFor(entry.Shown()));
  return jpeg == nullptr || jpeg->isFolder ? nullptr : jpeg;
}

}  // namespace apps

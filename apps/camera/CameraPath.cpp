// Paths on the camera: as people type them, as the camera wants them, and whether they exist.

#include "apps/camera/CameraPath.h"

#include <algorithm>
#include <cctype>
#include <cstdint>

#include "apps/camera/FolderListing.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "base/Ascii.h"

namespace apps {
namespace {

bool HasDrive(std::string_view path) {
  return path.size() >= 2 && std::isalpha(static_cast<unsigned char>(path[0])) != 0 && path[1] == ':' &&
         (path.size() == 2 || path[2] == '\\');
}

}  // namespace

std::string ToCameraPath(std::string_view typed) {
  std::string path(typed);
  std::replace(path.begin(), path.end(), '/', '\\');
  while (path.size() > 2 && path.back() == '\\') path.pop_back();
  if (!HasDrive(path)) {
    throw Failure(ExitCode::kUsage,
                  "\"" + Printable(typed) + "\" is no path on a camera; one looks like I:/DCIM/100ABCDE/IMG_0001.JPG.");
  }
  return path;
}

SplitPath Split(std::string_view cameraPath) {
  const std::size_t slash = cameraPath.rfind('\\');
  if (slash == std::string_view::npos) return {std::string(cameraPath), ""};
  return {std::string(cameraPath.substr(0, slash)), std::string(cameraPath.substr(slash + 1))};
}

bool SameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return base::Lower(x) == base::Lower(y); });
}

std::optional<CameraDirent> FindEntry(Camera& camera, std::string_view cameraPath) {
  const SplitPath path = Split(cameraPath);
  for (CameraDirent& entry : ListFolder(camera, path.folder)) {
    const bool isLabel = (entry.attributes & kelva::kAttributeVolumeLabel) != 0;
    if (!isLabel && SameName(entry.name, path.name)) return std::move(entry);
  }
  return std::nullopt;
}

void RequireFolder(Camera& camera, std::string_view folder) {
  const SplitPath path = Split(folder);
  if (path.name.empty()) {
    return;  // the drive itself
  }
  RequireFolder(camera, path.folder);
  const auto entry = FindEntry(camera, folder);
  if (entry && (entry->attributes & kelva::kAttributeDirectory) != 0) return;
  throw Failure(ExitCode::kFailed, "There is no folder " + Printable(folder) + " on the camera; `kelva ls " +
                                       Printable(path.folder) + "` shows what is there.");
}

unsigned long long SizeOf(const CameraDirent& entry) {
  return static_cast<std::uint32_t>(entry.size);
}

}  // namespace apps

// Turns paths of the camera (I:\DCIM) into paths below the storage folder, and refuses those that could leave it.
#include "vcam/device/CameraPath.h"

#include <algorithm>

namespace vcam {
namespace {

constexpr std::size_t kMaxPath = 1024;
constexpr std::size_t kMaxName = 255;

bool IsForbidden(char c) {
  return c == '/' || c == '\\' || static_cast<unsigned char>(c) < 0x20;
}

bool HasDrive(std::string_view path) {
  return path.size() >= 2 && (path[0] == 'I' || path[0] == 'i') && path[1] == ':' &&
         (path.size() == 2 || path[2] == '\\');
}

}  // namespace

bool IsCameraName(std::string_view name) {
  return !name.empty() && name.size() <= kMaxName && name != "." && name != ".." && name != kStateFolder &&
         std::none_of(name.begin(), name.end(), IsForbidden);
}

std::optional<std::string> RelativePath(std::string_view cameraPath) {
  if (cameraPath.size() > kMaxPath || !HasDrive(cameraPath)) return std::nullopt;
  std::string relative;
  for (std::string_view rest = cameraPath.substr(2); !rest.empty();) {
    const std::size_t end = std::min(rest.find('\\'), rest.size());
    const std::string_view name = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (name.empty()) continue;
    if (!IsCameraName(name)) return std::nullopt;
    if (!relative.empty()) relative += '/';
    relative += name;
  }
  return relative;
}

std::string CameraPath(std::string_view relative) {
  std::string path = "I:\\" + std::string(relative);
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

}  // namespace vcam

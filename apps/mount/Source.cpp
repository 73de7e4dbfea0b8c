// How a mount names its camera.
#include "apps/mount/Source.h"

#include <filesystem>

#include "apps/doctor/linux/Mounts.h"
#include "apps/files/SafeName.h"

namespace apps {
namespace {

std::string Safe(std::string_view text) {
  std::string safe;
  for (const char c : SafeName(text)) safe += c == ',' ? "%2C" : std::string(1, c);
  return safe;
}

}  // namespace

std::string FolderNameOf(std::string_view serial) {
  return serial.empty() ? "Kelva" : "Kelva " + Safe(serial);
}

std::string SourceOf(std::string_view serial, const std::optional<std::string>& bus) {
  if (!bus) return FolderNameOf(serial);
  const std::string path = std::filesystem::absolute(*bus).lexically_normal().string();
  return FolderNameOf(serial) + std::string(doctor::kOfBus) + Safe(path.substr(1));
}

std::optional<std::string> MountOf(std::string_view serial, const std::optional<std::string>& bus) {
  const std::string source = SourceOf(serial, bus);
  for (const doctor::MountedCamera& mounted : doctor::Mounts()) {
    if (mounted.source == source) return mounted.path;
  }
  return std::nullopt;
}

}  // namespace apps

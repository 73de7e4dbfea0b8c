// How a mount names its camera.
#include "apps/mount/Source.h"

#include "apps/doctor/linux/Mounts.h"
#include "apps/files/SafeName.h"

namespace apps {

std::string SourceOf(std::string_view serial) {
  if (serial.empty()) return "Kelva";
  std::string source = "Kelva ";
  for (const char c : SafeName(serial)) source += c == ',' ? "%2C" : std::string(1, c);
  return source;
}

std::optional<std::string> MountOf(std::string_view serial) {
  const std::string source = SourceOf(serial);
  for (const doctor::MountedCamera& mounted : doctor::Mounts()) {
    if (mounted.source == source) return mounted.path;
  }
  return std::nullopt;
}

}  // namespace apps

#include "src/ui/linux/KelvaHelper/opener/ScopeName.h"

#include <string_view>

namespace opener {
namespace {

bool IsPlain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '_' || c == ':';
}

/// The manager's escaping: what is not plain becomes \xNN; so does a dash, which separates the parts.
std::string Escape(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string escaped;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (IsPlain(c)) {
      escaped += c;
    } else {
      escaped += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  return escaped;
}

}  // namespace

std::string ScopeName(const std::string& desktopId, int process) {
  return "app-kelva-" + Escape(desktopId) + "-" + std::to_string(process) + ".scope";
}

}  // namespace opener

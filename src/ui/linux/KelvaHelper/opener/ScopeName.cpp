// The name of the scope that the service manager puts an application into.

#include "src/ui/linux/KelvaHelper/opener/ScopeName.h"

#include <string_view>

#include "base/Hex.h"

namespace opener {
namespace {

bool IsPlain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '_' || c == ':';
}

/// The manager's escaping: what is not plain becomes \xNN; so does a dash, which separates the parts.
std::string Escape(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (IsPlain(c)) {
      escaped += c;
    } else {
      escaped += "\\x" + base::Hex({&c, 1});
    }
  }
  return escaped;
}

}  // namespace

std::string ScopeName(const std::string& desktopId, int process) {
  return "app-kelva-" + Escape(desktopId) + "-" + std::to_string(process) + ".scope";
}

}  // namespace opener

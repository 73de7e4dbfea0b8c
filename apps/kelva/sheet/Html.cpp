// Escapes names from a camera for HTML and addresses.
#include "apps/kelva/sheet/Html.h"

#include <array>

#include "apps/commandline/Printable.h"
#include "apps/commandline/Words.h"
#include "base/Hex.h"

namespace apps {
namespace {

bool StandsForItself(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
         c == '.' || c == '~' || c == '/';
}

}  // namespace

std::string Html(std::string_view bytes) {
  constexpr std::string_view kSpecial = "&<>\"'";
  constexpr std::array<std::string_view, kSpecial.size()> kEntities = {"&amp;", "&lt;", "&gt;", "&quot;", "&#39;"};
  std::string out;
  for (const char c : Printable(bytes)) {
    const std::size_t at = kSpecial.find(c);
    out += at == std::string_view::npos ? std::string(1, c) : std::string(kEntities[at]);
  }
  return out;
}

std::string RelativeAddress(std::string_view path) {
  std::string out = "./";
  for (const char c : path) out += StandsForItself(c) ? std::string(1, c) : base::PercentHex(c);
  return out;
}

std::string ImageAddress(std::string_view jpegFile) {
  return "data:image/jpeg;base64," + Base64(jpegFile);
}

}  // namespace apps

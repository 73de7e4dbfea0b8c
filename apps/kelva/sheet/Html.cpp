// Escapes names from a camera for HTML and addresses.
#include "apps/kelva/sheet/Html.h"

#include <array>

#include "apps/commandline/Printable.h"
#include "base/Hex.h"

namespace apps {
namespace {

bool StandsForItself(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
         c == '.' || c == '~' || c == '/';
}

std::string Base64(std::string_view bytes) {
  static constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  out.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    unsigned group = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      group = (group << 8) | (at + i < bytes.size() ? static_cast<unsigned char>(bytes[at + i]) : 0U);
    }
    for (std::size_t i = 0; i < 4; ++i) out += at + i <= bytes.size() ? kDigits[(group >> (18 - 6 * i)) & 0x3F] : '=';
  }
  return out;
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

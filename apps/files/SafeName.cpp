// Makes file names from a camera's bytes that are safe here.
#include "apps/files/SafeName.h"

#include <array>
#include <cstdint>
#include <cstdio>

#include "apps/commandline/Printable.h"
#include "base/Hex.h"

namespace apps {
namespace {

constexpr std::size_t kLongest = 200;  // file systems take 255, temporary and numbered names need some

void AppendEscaped(std::string& out, std::string_view bytes) {
  for (const char c : bytes) out += base::PercentHex(c);
}

// `c` is the character's first byte.
bool IsSound(const Utf8Piece& character, char c, bool first) {
  if (c == '/' || c == '\\' || c == '%') return false;
  if (first && (c == '.' || c == ' ')) return false;
  return character.valid && !IsCommand(character.codePoint);
}

// FNV-1a: only keeps shortened names apart; security does not depend on it.
std::uint64_t CheckSum(std::string_view bytes) {
  std::uint64_t sum = 14'695'981'039'346'656'037ULL;
  for (const char c : bytes) sum = (sum ^ static_cast<unsigned char>(c)) * 1'099'511'628'211ULL;
  return sum;
}

std::string_view ExtensionOf(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  constexpr std::size_t kLongestExtension = 16;
  if (dot == std::string_view::npos || name.size() - dot > kLongestExtension) return {};
  return name.substr(dot);
}

// Cuts where neither an escape nor a character is torn.
std::string_view Start(std::string_view name, std::size_t size) {
  while (size > 0 && (static_cast<unsigned char>(name[size]) & 0xC0) == 0x80) --size;
  for (std::size_t back = 1; back <= 2 && back <= size; ++back) {
    if (name[size - back] == '%') return name.substr(0, size - back);
  }
  return name.substr(0, size);
}

std::string Shortened(const std::string& name) {
  std::array<char, 32> sum{};
  std::snprintf(sum.data(), sum.size(), "%%~%016llx", static_cast<unsigned long long>(CheckSum(name)));
  const std::string_view extension = ExtensionOf(name);
  const std::string end = sum.data() + std::string(extension);
  return std::string(Start(name, kLongest - end.size())) + end;
}

}  // namespace

std::string SafeName(std::string_view cameraBytes) {
  std::string name;
  for (std::string_view rest = cameraBytes; !rest.empty();) {
    const Utf8Piece character = FirstUtf8(rest);
    const std::string_view bytes = rest.substr(0, character.length);
    if (IsSound(character, bytes[0], name.empty())) {
      name += bytes;
    } else {
      AppendEscaped(name, bytes);
    }
    rest.remove_prefix(bytes.size());
  }
  if (name.empty()) return "%";
  return name.size() > kLongest ? Shortened(name) : name;
}

}  // namespace apps

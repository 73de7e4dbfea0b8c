// Mac Roman to UTF-8 and back: the encoding in which strings come from C.

#include "darwin/cf/MacRoman.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace darwin::cf {
namespace {

/// The characters of the upper half, 0x80 to 0xFF.
constexpr char16_t kUpperHalf[] = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5,
    0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3, 0x00F2, 0x00F4,
    0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6,
    0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8, 0x221E, 0x00B1, 0x2264, 0x2265,
    0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF,
    0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB, 0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5,
    0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044,
    0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02, 0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9,
    0x0131, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,
};
static_assert(std::size(kUpperHalf) == 128);

void AppendUtf8(std::string& text, char16_t character) {
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else if (character < 0x800) {
    text += static_cast<char>(0xC0 | character >> 6);
    text += static_cast<char>(0x80 | (character & 0x3F));
  } else {
    text += static_cast<char>(0xE0 | character >> 12);
    text += static_cast<char>(0x80 | (character >> 6 & 0x3F));
    text += static_cast<char>(0x80 | (character & 0x3F));
  }
}

/// How a lead byte starts a character: how many bytes it takes, its own bits, and the least value that needs so many.
struct Lead {
  std::size_t length;
  std::uint32_t bits;
  std::uint32_t least;
};

std::optional<Lead> ReadLead(unsigned char byte) {
  if (byte < 0x80) return Lead{1, byte, 0};
  if (byte >= 0xC2 && byte < 0xE0) return Lead{2, byte & 0x1Fu, 0x80};
  if (byte >= 0xE0 && byte < 0xF0) return Lead{3, byte & 0x0Fu, 0x800};
  if (byte >= 0xF0 && byte < 0xF5) return Lead{4, byte & 0x07u, 0x10000};
  return std::nullopt;
}

/// Takes the next character off the text; nothing when it is not well-formed.
std::optional<std::uint32_t> TakeCharacter(std::string_view& text) {
  const std::optional<Lead> lead = ReadLead(static_cast<unsigned char>(text.front()));
  if (!lead || text.size() < lead->length) return std::nullopt;
  std::uint32_t character = lead->bits;
  for (std::size_t i = 1; i < lead->length; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0) != 0x80) return std::nullopt;
    character = character << 6 | (byte & 0x3Fu);
  }
  const bool surrogate = character >= 0xD800 && character < 0xE000;
  if (character < lead->least || character > 0x10FFFF || surrogate) return std::nullopt;
  text.remove_prefix(lead->length);
  return character;
}

}  // namespace

std::string Utf8FromMacRoman(std::string_view text) {
  std::string utf8;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    AppendUtf8(utf8, byte < 0x80 ? byte : kUpperHalf[byte - 0x80]);
  }
  return utf8;
}

std::optional<std::string> MacRomanFromUtf8(std::string_view text) {
  std::string roman;
  while (!text.empty()) {
    const std::optional<std::uint32_t> character = TakeCharacter(text);
    if (!character) return std::nullopt;
    const auto* upper = std::find(std::begin(kUpperHalf), std::end(kUpperHalf), *character);
    if (*character >= 0x80 && upper == std::end(kUpperHalf)) return std::nullopt;
    roman += static_cast<char>(*character < 0x80 ? *character
                                                 : 0x80u + static_cast<std::uint32_t>(upper - std::begin(kUpperHalf)));
  }
  return roman;
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    if (!TakeCharacter(text)) return false;
  }
  return true;
}

}  // namespace darwin::cf

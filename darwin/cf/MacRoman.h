#ifndef KELVA_DARWIN_CF_MAC_ROMAN_H_
#define KELVA_DARWIN_CF_MAC_ROMAN_H_

#include <optional>
#include <string>
#include <string_view>

namespace darwin::cf {

/// Mac Roman to UTF-8; every byte is a character.
std::string Utf8FromMacRoman(std::string_view text);

/// UTF-8 to Mac Roman; nothing when Mac Roman lacks a character.
std::optional<std::string> MacRomanFromUtf8(std::string_view text);

/// True when the bytes are well-formed UTF-8.
bool IsUtf8(std::string_view text);

}  // namespace darwin::cf

#endif  // KELVA_DARWIN_CF_MAC_ROMAN_H_

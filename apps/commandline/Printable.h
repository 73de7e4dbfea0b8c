#ifndef KELVA_APPS_COMMANDLINE_PRINTABLE_H_
#define KELVA_APPS_COMMANDLINE_PRINTABLE_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace apps {

/// One character of a byte string that need not be UTF-8.
struct Utf8Piece {
  char32_t codePoint;  ///< meaningless when not valid
  std::size_t length;  ///< bytes taken, at least 1 while there are any
  bool valid;
};

/// The first character of `bytes`, which is not empty. Overlong forms, surrogates and values above U+10FFFF are not
/// valid.
Utf8Piece FirstUtf8(std::string_view bytes);

/// What a terminal obeys instead of showing: C0, DEL, C1, and the characters that turn the direction of text or hide
/// it.
bool IsCommand(char32_t codePoint);

bool IsUtf8(std::string_view bytes);

/// `bytes` as one line that is safe on a terminal: control characters, direction overrides and bytes that are not UTF-8
/// become \xNN or \u{N}, a backslash stays as it is because camera paths are full of them.
std::string Printable(std::string_view bytes);

/// As Printable, but line feeds and tabs are kept: for texts of several lines.
std::string PrintableLines(std::string_view bytes);

/// `bytes` as Printable, in quotes where a shell would not take them for one word otherwise.
std::string ShellWord(std::string_view bytes);

/// Columns that a terminal needs for text that Printable made: two for a wide character (CJK), none for one that combines.
std::size_t Width(std::string_view printable);
/// The first characters of printable text, as many as fit into `columns`.
std::string Shortened(std::string_view printable, std::size_t columns);

/// Bytes in words: "812 B", "1.4 MB" (powers of 1,000, as cards and cameras are sold).
std::string Bytes(unsigned long long count);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_PRINTABLE_H_

// Makes bytes from a camera safe for a terminal.
#include "apps/commandline/Printable.h"

#include <locale.h>
#include <wchar.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <locale>

namespace apps {
namespace {

// Length of the sequence that a lead byte announces, 0 for a byte that cannot lead.
std::size_t AnnouncedLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 0;
}

char32_t LeadBits(unsigned char lead, std::size_t length) {
  static constexpr std::array<unsigned char, 5> kMask = {0, 0x7F, 0x1F, 0x0F, 0x07};
  return static_cast<char32_t>(lead & kMask[length]);
}

bool InRange(char32_t codePoint, std::size_t length) {
  static constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
  return codePoint >= kSmallest[length] && codePoint <= 0x10FFFF && !surrogate;
}

void AppendByteEscape(std::string& out, unsigned char byte) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "\\x%02x", byte);
  out += text.data();
}

void AppendEscape(std::string& out, char32_t c) {
  if (c < 0x80) return AppendByteEscape(out, static_cast<unsigned char>(c));
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "\\u{%x}", static_cast<unsigned>(c));
  out += text.data();
}

// Not every system has the first one.
locale_t UnicodeLocale() {
  for (const char* name : {"C.UTF-8", "en_US.UTF-8"}) {
    if (const locale_t found = ::newlocale(LC_CTYPE_MASK, name, nullptr)) return found;
  }
  return nullptr;
}

// The system's table of widths, which needs a locale that knows Unicode. It is this thread's for the moment of the question.
std::size_t WidthOf(const Utf8Piece& piece) {
  if (!piece.valid || piece.codePoint < 0x300) return 1;
  static const locale_t unicode = UnicodeLocale();
  if (unicode == nullptr) return 1;
  const locale_t before = ::uselocale(unicode);
  const int width = ::wcwidth(static_cast<wchar_t>(piece.codePoint));
  ::uselocale(before);
  return width < 0 ? 1 : static_cast<std::size_t>(width);
}

bool IsPlainForShells(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || (static_cast<unsigned char>(c) & 0x80) != 0 ||
         std::string_view("/:._-+,@%=").find(c) != std::string_view::npos;
}

std::string Escaped(std::string_view bytes, bool keepLines) {
  std::string out;
  out.reserve(bytes.size());
  while (!bytes.empty()) {
    const Utf8Piece piece = FirstUtf8(bytes);
    const bool line = keepLines && (bytes[0] == '\n' || bytes[0] == '\t');
    if (!piece.valid) {
      AppendByteEscape(out, static_cast<unsigned char>(bytes[0]));
    } else if (IsCommand(piece.codePoint) && !line) {
      AppendEscape(out, piece.codePoint);
    } else {
      out += bytes.substr(0, piece.length);
    }
    bytes.remove_prefix(piece.length);
  }
  return out;
}

}  // namespace

bool IsCommand(char32_t c) {
  return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x061C || (c >= 0x200B && c <= 0x200F) ||
         (c >= 0x2028 && c <= 0x202E) || (c >= 0x2060 && c <= 0x2069) || c == 0xFEFF;
}

Utf8Piece FirstUtf8(std::string_view bytes) {
  const auto lead = static_cast<unsigned char>(bytes[0]);
  const std::size_t length = AnnouncedLength(lead);
  if (length == 0 || length > bytes.size()) return {0, 1, false};
  char32_t codePoint = LeadBits(lead, length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(bytes[i]);
    if ((next & 0xC0) != 0x80) return {0, 1, false};
    codePoint = (codePoint << 6) | (next & 0x3FU);
  }
  if (!InRange(codePoint, length)) return {0, 1, false};
  return {codePoint, length, true};
}

bool IsUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const Utf8Piece piece = FirstUtf8(bytes);
    if (!piece.valid) return false;
    bytes.remove_prefix(piece.length);
  }
  return true;
}

std::string Printable(std::string_view bytes) {
  return Escaped(bytes, false);
}

std::string ShellWord(std::string_view bytes) {
  std::string text = Printable(bytes);
  if (!text.empty() && std::all_of(text.begin(), text.end(), IsPlainForShells)) return text;
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? "'\\''" : std::string(1, c);
  return quoted + "'";
}

std::string PrintableLines(std::string_view bytes) {
  return Escaped(bytes, true);
}

std::size_t Width(std::string_view printable) {
  std::size_t width = 0;
  while (!printable.empty()) {
    const Utf8Piece piece = FirstUtf8(printable);
    width += WidthOf(piece);
    printable.remove_prefix(piece.length);
  }
  return width;
}

std::string Shortened(std::string_view printable, std::size_t columns) {
  std::string out;
  std::size_t used = 0;
  while (!printable.empty()) {
    const Utf8Piece piece = FirstUtf8(printable);
    used += WidthOf(piece);
    if (used > columns) break;
    out += printable.substr(0, piece.length);
    printable.remove_prefix(piece.length);
  }
  return out;
}

std::string Bytes(unsigned long long count) {
  static constexpr std::array<const char*, 7> kUnits = {"B", "kB", "MB", "GB", "TB", "PB", "EB"};
  if (count < 1000) return std::to_string(count) + " B";
  auto value = static_cast<double>(count);
  std::size_t unit = 0;
  // 999.95 would be printed as 1000.0 of the smaller unit.
  while (value >= 999.95 && unit + 1 < kUnits.size()) {
    value /= 1000;
    ++unit;
  }
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.1f %s", value, kUnits[unit]);
  return text.data();
}

}  // namespace apps

// Recognises texts: what a browser saves in place of a download is one.
#include "apps/kelva/verbs/TextKind.h"

#include <algorithm>
#include <array>
#include <string>

#include "apps/commandline/Printable.h"
#include "base/Ascii.h"

namespace apps {
namespace {

// UTF-8, without the control characters that no text file has.
bool IsText(std::string_view head) {
  constexpr std::size_t kLongestCharacter = 4;
  while (!head.empty()) {
    const Utf8Piece piece = FirstUtf8(head);
    if (!piece.valid) return head.size() < kLongestCharacter;
    const char c = head[0];
    if ((c >= 0 && c < ' ' && std::string_view("\t\n\r\f").find(c) == std::string_view::npos) || c == '\x7f') {
      return false;
    }
    head.remove_prefix(piece.length);
  }
  return true;
}

bool IsMarkup(std::string_view head) {
  constexpr std::array<std::string_view, 5> kStarts = {"<!doctype", "<html", "<head", "<?xml", "<!--"};
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (head.starts_with(kByteOrderMark)) head.remove_prefix(kByteOrderMark.size());
  head.remove_prefix(std::min(head.find_first_not_of(" \t\r\n"), head.size()));
  const std::string start = base::Lower(std::string(head.substr(0, kStarts[0].size())));
  return std::any_of(kStarts.begin(), kStarts.end(), [&](std::string_view known) { return start.starts_with(known); });
}

// The text behind a mark of UTF-16; what has no such mark as it is. A letter of Latin-1 becomes '?', and any other character
// a zero: an image may begin with those two bytes too, and almost no two of its bytes would be a letter.
std::string FromUtf16(std::string_view head) {
  const bool bigFirst = head.starts_with("\xFE\xFF");
  if (!bigFirst && !head.starts_with("\xFF\xFE")) return std::string(head);
  std::string text;
  for (std::size_t at = 2; at + 1 < head.size(); at += 2) {
    const auto high = static_cast<unsigned char>(head[bigFirst ? at : at + 1]);
    const auto low = static_cast<unsigned char>(head[bigFirst ? at + 1 : at]);
    text += static_cast<char>(high != 0 ? 0 : low >= 0xA0 ? '?' : low);
  }
  return text;
}

}  // namespace

std::string_view TextKind(std::string_view bytes) {
  const std::string head = FromUtf16(bytes);
  if (head.empty()) return "";
  if (IsMarkup(head)) return "an HTML page";
  return IsText(head) ? "a text" : "";
}

}  // namespace apps

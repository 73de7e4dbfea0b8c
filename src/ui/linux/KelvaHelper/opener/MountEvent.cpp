// Reads what kelva-mount prints with --json: an object of plain values a line.

#include "src/ui/linux/KelvaHelper/opener/MountEvent.h"

#include <glib.h>

#include <charconv>
#include <string_view>

namespace opener {
namespace {

using Members = std::map<std::string, std::string>;

/// Takes a line apart from its front. GLib has no reader of JSON, and a library for it would cost the launch more time
/// than the rest of it.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  std::optional<Members> Object() {
    Members members;
    if (!Take('{')) return std::nullopt;
    if (Take('}')) return AtEnd(std::move(members));
    do {
      const std::optional<std::string> name = String();
      if (!name || !Take(':')) return std::nullopt;
      std::optional<std::string> value = Value();
      if (!value) return std::nullopt;
      members[*name] = std::move(*value);
    } while (Take(','));
    return Take('}') ? AtEnd(std::move(members)) : std::nullopt;
  }

 private:
  std::optional<Members> AtEnd(Members members) {
    SkipBlanks();
    return text_.empty() ? std::optional(std::move(members)) : std::nullopt;
  }

  void SkipBlanks() {
    while (!text_.empty() && (text_.front() == ' ' || text_.front() == '\t' || text_.front() == '\r')) Next();
  }

  bool Take(char expected) {
    SkipBlanks();
    if (text_.empty() || text_.front() != expected) return false;
    Next();
    return true;
  }

  char Next() {
    const char c = text_.front();
    text_.remove_prefix(1);
    return c;
  }

  std::optional<std::string> Value() {
    SkipBlanks();
    if (!text_.empty() && text_.front() == '"') return String();
    const std::string_view word = text_.substr(0, text_.find_first_of(",} \t"));
    if (word.empty() || word.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789+-.E") != std::string_view::npos) {
      return std::nullopt;
    }
    text_.remove_prefix(word.size());
    return std::string(word);
  }

  std::optional<std::string> String() {
    std::string value;
    if (!Take('"')) return std::nullopt;
    while (!text_.empty()) {
      const char c = Next();
      if (c == '"') return value;
      if (c != '\\') {
        value += c;
      } else if (!Escape(value)) {
        return std::nullopt;
      }
    }
    return std::nullopt;
  }

  bool Escape(std::string& value) {
    constexpr std::string_view kLetters = "\"\\/bfnrt";
    constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
    if (text_.empty()) return false;
    const char letter = Next();
    if (letter == 'u') return CodePoint(value);
    const std::size_t at = kLetters.find(letter);
    if (at == std::string_view::npos) return false;
    value += kMeanings[at];
    return true;
  }

  bool CodePoint(std::string& value) {
    constexpr std::size_t kDigits = 4;
    const std::string_view digits = text_.substr(0, kDigits);
    unsigned point = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), point, 16);
    if (error != std::errc() || digits.size() != kDigits || end != digits.data() + kDigits) return false;
    // No end of a C string within a path, and no half of a pair.
    if (point == 0 || !g_unichar_validate(point)) return false;
    char bytes[6];
    value.append(bytes, static_cast<std::size_t>(g_unichar_to_utf8(point, bytes)));
    text_.remove_prefix(kDigits);
    return true;
  }

  std::string_view text_;
};

std::string MemberOf(const Members& event, const std::string& name) {
  const auto found = event.find(name);
  return found == event.end() ? std::string() : found->second;
}

}  // namespace

std::optional<Members> ReadEvent(const std::string& line) {
  return Reader(line).Object();
}

std::optional<Mounted> ReadMounted(const Members& event) {
  Mounted mounted{MemberOf(event, "path"), MemberOf(event, "serial"), MemberOf(event, "was_mounted") == "true"};
  if (MemberOf(event, "event") != "mounted" || mounted.path.empty() || mounted.path.front() != '/') return std::nullopt;
  return mounted;
}

}  // namespace opener

// Puts numbers into words, and encodes bytes as words of a line and as base64.
#include "apps/commandline/Words.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

#include "base/Hex.h"

namespace apps {
namespace {

constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/_-.";

std::optional<char> ByteOf(std::string_view digits) {
  std::uint8_t byte = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
  if (digits.size() != 2 || error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return static_cast<char>(byte);
}

}  // namespace

std::string Counted(std::uint64_t count, std::string_view what) {
  return std::to_string(count) + " " + std::string(what) + (count == 1 ? "" : "s");
}

std::string EncodedWord(std::string_view bytes) {
  std::string word;
  for (const char byte : bytes) {
    if (kPlain.find(byte) != std::string_view::npos) {
      word += byte;
    } else {
      word += base::PercentHex(byte);
    }
  }
  return word;
}

std::optional<std::string> DecodedWord(std::string_view word) {
  std::string bytes;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (word[i] != '%') {
      bytes += word[i];
      continue;
    }
    const auto byte = ByteOf(word.substr(i + 1, 2));
    if (!byte) return std::nullopt;
    bytes += *byte;
    i += 2;
  }
  return bytes;
}

std::optional<std::vector<std::string>> WordsIn(std::string_view line) {
  std::vector<std::string> words;
  while (true) {
    const std::size_t tab = line.find('\t');
    auto word = DecodedWord(line.substr(0, tab));
    if (!word) return std::nullopt;
    words.push_back(*std::move(word));
    if (tab == std::string_view::npos) return words;
    line.remove_prefix(tab + 1);
  }
}

void TakeLines(std::string& came, const std::function<void(std::string_view line)>& take) {
  std::size_t from = 0;
  for (std::size_t end = 0; (end = came.find('\n', from)) != std::string::npos; from = end + 1) {
    take(std::string_view(came).substr(from, end - from));
  }
  came.erase(0, from);
}

std::string Base64(std::string_view bytes) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(bytes.size() - i, 3);
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) group = group << 8 | (k < count ? static_cast<std::uint8_t>(bytes[i + k]) : 0U);
    for (std::size_t k = 0; k < 4; ++k) text += k <= count ? kDigits[group >> (18 - 6 * k) & 63U] : '=';
  }
  return text;
}

}  // namespace apps

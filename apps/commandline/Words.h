#ifndef KELVA_APPS_COMMANDLINE_WORDS_H_
#define KELVA_APPS_COMMANDLINE_WORDS_H_

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace apps {

/// "1 picture", "3 pictures": a number with what is counted, which takes an s in the plural.
std::string Counted(std::uint64_t count, std::string_view what);

// Lines of words in which any byte can stand, for programs that talk to each other.

/// The bytes as one word: letters, digits and / _ - . stand for themselves, other bytes are %XX.
std::string EncodedWord(std::string_view bytes);
/// The bytes of a word. Nothing when a % is not followed by two hexadecimal digits.
std::optional<std::string> DecodedWord(std::string_view word);

/// The words of a line, decoded; TAB separates them. Nothing when one of them is not encoded as above.
std::optional<std::vector<std::string>> WordsIn(std::string_view line);

/// Takes the whole lines off the front of what came, and hands them over without their line feeds.
void TakeLines(std::string& came, const std::function<void(std::string_view line)>& take);

/// Bytes in base64 (RFC 4648), for JSON.
std::string Base64(std::string_view bytes);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_WORDS_H_

#ifndef KELVA_APPS_FILES_SHA1_H_
#define KELVA_APPS_FILES_SHA1_H_

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace apps {

/// The SHA-1 of some bytes as 40 lower-case hexadecimal digits, the form of a camera's keys.
std::string Sha1(std::span<const char> bytes);

/// The SHA-1 of an open file from its start, in pieces; nothing when it cannot be read.
std::optional<std::string> Sha1OfFile(int fd);

/// Whether a text has the form of a key: 40 hexadecimal digits.
bool IsKey(std::string_view text);

}  // namespace apps

#endif  // KELVA_APPS_FILES_SHA1_H_

#ifndef KELVA_APPS_FILES_SHA1_H_
#define KELVA_APPS_FILES_SHA1_H_

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace apps {

/// The SHA-1 of bytes that come piece by piece.
class Sha1Sum {
 public:
  Sha1Sum();
  ~Sha1Sum();
  Sha1Sum(const Sha1Sum&) = delete;
  Sha1Sum& operator=(const Sha1Sum&) = delete;

  void Add(std::span<const char> bytes);
  /// As Sha1, of all bytes so far, and begins anew.
  std::string Take();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// The SHA-1 of some bytes as 40 lower-case hexadecimal digits, the form of a camera's keys.
std::string Sha1(std::span<const char> bytes);

/// The SHA-1 of an open file from its start, in pieces; nothing when it cannot be read.
std::optional<std::string> Sha1OfFile(int fd);

/// Whether a text has the form of a key: 40 hexadecimal digits.
bool IsKey(std::string_view text);

}  // namespace apps

#endif  // KELVA_APPS_FILES_SHA1_H_

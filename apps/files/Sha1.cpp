// The plain SHA-1 functions of libcrypto need none of its start-up work; the newer interface costs megabytes at each
// start.
#define OPENSSL_SUPPRESS_DEPRECATED
#include "apps/files/Sha1.h"

#include <openssl/sha.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <vector>

#include "base/Hex.h"

namespace apps {
namespace {

std::string Finish(SHA_CTX& state) {
  std::array<unsigned char, SHA_DIGEST_LENGTH> digest{};
  SHA1_Final(digest.data(), &state);
  return base::Hex(digest);
}

}  // namespace

std::string Sha1(std::span<const char> bytes) {
  SHA_CTX state;
  SHA1_Init(&state);
  SHA1_Update(&state, bytes.data(), bytes.size());
  return Finish(state);
}

std::optional<std::string> Sha1OfFile(int fd) {
  SHA_CTX state;
  SHA1_Init(&state);
  std::vector<char> piece(std::size_t{1} << 18);
  off_t offset = 0;
  while (true) {
    const ssize_t size = ::pread(fd, piece.data(), piece.size(), offset);
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) return std::nullopt;
    if (size == 0) return Finish(state);
    SHA1_Update(&state, piece.data(), static_cast<std::size_t>(size));
    offset += size;
  }
}

bool IsKey(std::string_view text) {
  constexpr std::size_t kDigits = 40;
  return text.size() == kDigits && text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

}  // namespace apps

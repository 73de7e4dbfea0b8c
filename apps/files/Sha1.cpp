// The plain SHA-1 functions of libcrypto need none of its start-up work; the newer interface costs megabytes at each
// start.
#define OPENSSL_SUPPRESS_DEPRECATED
#include "apps/files/Sha1.h"

#include <openssl/sha.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>

#include "base/Hex.h"

namespace apps {

struct Sha1Sum::State {
  SHA_CTX context;
};

Sha1Sum::Sha1Sum() : state_(std::make_unique<State>()) {
  SHA1_Init(&state_->context);
}

Sha1Sum::~Sha1Sum() = default;

void Sha1Sum::Add(std::span<const char> bytes) {
  SHA1_Update(&state_->context, bytes.data(), bytes.size());
}

std::string Sha1Sum::Take() {
  std::array<unsigned char, SHA_DIGEST_LENGTH> digest{};
  SHA1_Final(digest.data(), &state_->context);
  SHA1_Init(&state_->context);
  return base::Hex(digest);
}

std::string Sha1(std::span<const char> bytes) {
  Sha1Sum sum;
  sum.Add(bytes);
  return sum.Take();
}

std::optional<std::string> Sha1OfFile(int fd) {
  constexpr std::size_t kPiece = std::size_t{1} << 18;
  Sha1Sum sum;
  // Not cleared: that would take longer than the sum of a small file.
  const std::unique_ptr<char[]> piece(new char[kPiece]);
  off_t offset = 0;
  while (true) {
    const ssize_t size = ::pread(fd, piece.get(), kPiece, offset);
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) return std::nullopt;
    if (size == 0) return sum.Take();
    sum.Add({piece.get(), static_cast<std::size_t>(size)});
    offset += size;
  }
}

bool IsKey(std::string_view text) {
  constexpr std::size_t kDigits = 40;
  return text.size() == kDigits && text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

}  // namespace apps

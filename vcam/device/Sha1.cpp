// Hashes, by OpenSSL's digest interface.
#include "vcam/device/Sha1.h"

#include <openssl/evp.h>

#include <array>
#include <new>

#include "base/Hex.h"

namespace vcam {

void Sha1::Free::operator()(evp_md_ctx_st* context) const {
  EVP_MD_CTX_free(context);
}

Sha1::Sha1() : context_(EVP_MD_CTX_new()) {
  if (!context_) throw std::bad_alloc();
  EVP_DigestInit_ex(context_.get(), EVP_sha1(), nullptr);
}

void Sha1::Update(std::span<const std::uint8_t> bytes) {
  EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size());
}

std::string Sha1::Hex() {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned int length = 0;
  EVP_DigestFinal_ex(context_.get(), digest.data(), &length);
  return base::Hex(std::span(digest).first(length));
}

std::string Sha256Hex(std::string_view text) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned int length = 0;
  EVP_Digest(text.data(), text.size(), digest.data(), &length, EVP_sha256(), nullptr);
  return base::Hex(std::span(digest).first(length));
}

}  // namespace vcam

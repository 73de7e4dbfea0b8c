#ifndef KELVA_VCAM_DEVICE_SHA1_H_
#define KELVA_VCAM_DEVICE_SHA1_H_

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

struct evp_md_ctx_st;

namespace vcam {

/// A running SHA-1.
class Sha1 {
 public:
  Sha1();

  void Update(std::span<const std::uint8_t> bytes);
  /// Ends the computation. Gives 40 lower-case hexadecimal digits.
  std::string Hex();

 private:
  struct Free {
    void operator()(evp_md_ctx_st* context) const;
  };
  std::unique_ptr<evp_md_ctx_st, Free> context_;
};

/// The SHA-256 of a text, 64 lower-case hexadecimal digits.
std::string Sha256Hex(std::string_view text);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_SHA1_H_

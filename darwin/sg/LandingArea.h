#ifndef KELVA_DARWIN_SG_LANDING_AREA_H_
#define KELVA_DARWIN_SG_LANDING_AREA_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "darwin/sg/SgSystem.h"

namespace darwin::sg {

/// Holds an answer until its true length is known. The kernel fills all of the length asked for: behind the device's
/// bytes stand bytes of an earlier command, even when the transport failed.
///
/// The answer lands in the node's reserved buffer where that can be mapped. The kernel then copies nothing, so copying
/// only the bytes that moved costs no more than a transfer straight to the caller. Otherwise, and for a larger answer,
/// it lands in memory of this process. Move-only owner of the mapping; destroy it before the descriptor is closed.
class LandingArea {
 public:
  LandingArea() = default;
  /// Maps as much of the node's reserved buffer as there are whole pages in `reserved` bytes.
  LandingArea(SgSystem& system, int descriptor, std::size_t reserved);
  ~LandingArea();
  LandingArea(LandingArea&& other) noexcept;
  LandingArea& operator=(LandingArea&& other) noexcept;

  /// True when an answer of `length` bytes lands in the mapped buffer.
  bool IsMapped(std::size_t length) const { return length <= mapped_.size(); }
  /// `length` bytes, valid until the next call.
  std::span<std::uint8_t> Bytes(std::size_t length);

 private:
  SgSystem* system_ = nullptr;
  std::span<std::uint8_t> mapped_;
  std::vector<std::uint8_t> own_;
};

}  // namespace darwin::sg

#endif  // KELVA_DARWIN_SG_LANDING_AREA_H_

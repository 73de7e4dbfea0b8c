#ifndef KELVA_DARWIN_SG_LANDING_AREA_H_
#define KELVA_DARWIN_SG_LANDING_AREA_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "darwin/sg/SgSystem.h"

namespace darwin::sg {

/// Where an answer lands until it is known how much of it is the device's own: the kernel fills all of the length asked
/// for, beyond the device's bytes with those of an earlier command, and does so even when the transport failed.
///
/// The node's reserved buffer itself where it can be mapped, which saves the kernel's copy, so that handing over just
/// the bytes that moved costs no more than a transfer straight to the caller. Memory of this side where it cannot, or
/// where an answer is larger. Move-only owner of the mapping; it must end before the descriptor is closed.
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

// Reads key, code and qualifier out of sense data of both formats.

#include "darwin/sg/SenseData.h"

#include <cstddef>

namespace darwin::sg {
namespace {

constexpr std::uint8_t kFormatMask = 0x7F;
constexpr std::uint8_t kKeyMask = 0x0F;
constexpr std::uint8_t kFixedCurrent = 0x70;
constexpr std::uint8_t kFixedDeferred = 0x71;
constexpr std::uint8_t kDescriptorCurrent = 0x72;
constexpr std::uint8_t kDescriptorDeferred = 0x73;

std::uint8_t At(std::span<const std::uint8_t> sense, std::size_t index) {
  return index < sense.size() ? sense[index] : std::uint8_t{0};
}

}  // namespace

wire::Sense DecodeSense(std::span<const std::uint8_t> sense) {
  switch (At(sense, 0) & kFormatMask) {
    case kFixedCurrent:
    case kFixedDeferred:
      return {static_cast<std::uint8_t>(At(sense, 2) & kKeyMask), At(sense, 12), At(sense, 13)};
    case kDescriptorCurrent:
    case kDescriptorDeferred:
      return {static_cast<std::uint8_t>(At(sense, 1) & kKeyMask), At(sense, 2), At(sense, 3)};
    default:
      return {};
  }
}

}  // namespace darwin::sg

#ifndef KELVA_VCAM_DEVICE_OPAQUE_H_
#define KELVA_VCAM_DEVICE_OPAQUE_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace vcam {

/// With a seed, fills `bytes` with bytes that mean nothing: the same ones for the same seed and name. They stand where the
/// protocol defines a length and no meaning, so a host that reads a meaning into them has invented it. Without a seed it
/// changes nothing.
void MakeOpaque(std::optional<std::uint32_t> seed, std::string_view name, std::span<std::uint8_t> bytes);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_OPAQUE_H_

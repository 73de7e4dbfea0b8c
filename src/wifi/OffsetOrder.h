#ifndef KELVA_WIFI_OFFSET_ORDER_H_
#define KELVA_WIFI_OFFSET_ORDER_H_

#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <optional>
#include <span>

#include "Camera.h"

namespace kelva {

/// Whether a camera honours the offsets of read commands.
enum class OffsetOrder {
  kUnknown,
  kAny,          ///< it proved that it does
  kForwardOnly,  ///< it sends the next bytes of its selection, whatever the offset says
};

/// What this process knows about a camera object. Any thread may ask; each camera belongs to one of them.
OffsetOrder KnownOrder(const boost::shared_ptr<Camera>& camera);
/// Keeps it until the camera object goes.
void RememberOrder(const boost::shared_ptr<Camera>& camera, OffsetOrder order);

/// The bytes of each read that asks a camera for the proof.
inline constexpr std::size_t kProofSize = 512;
/// A smaller file proves nothing.
inline constexpr std::size_t kLeastForProof = 4 * kProofSize;

/// Where in the first chunk of a file a camera has to jump to, in order to prove that it honours offsets: bytes that
/// differ from those at 0, where the read before began, and from those behind it, where a camera that ignores offsets
/// goes on. On the way back, to 0, the same holds. Nothing when the chunk has no such place.
std::optional<std::size_t> ProofOffset(std::span<const char> firstChunk);

}  // namespace kelva

#endif  // KELVA_WIFI_OFFSET_ORDER_H_

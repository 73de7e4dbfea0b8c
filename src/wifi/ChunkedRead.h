#ifndef KELVA_WIFI_CHUNKED_READ_H_
#define KELVA_WIFI_CHUNKED_READ_H_

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <utility>
#include <vector>

#include "Camera.h"
#include "Progress.h"

namespace kelva {

/// The largest size that is set aside on a camera's word alone; what is larger grows with what arrives.
inline constexpr std::size_t kLargestReservation = std::size_t{64} * 1024 * 1024;

/// Takes the chunks of a read, in order, as they arrive.
class ChunkSink {
 public:
  virtual ~ChunkSink() = default;
  /// The bytes are the caller's and valid during the call only.
  virtual void Append(std::span<const char> bytes) = 0;
};

/// Gathers a read in one vector.
class VectorSink final : public ChunkSink {
 public:
  /// Keeps all that arrives.
  VectorSink() = default;
  /// Keeps the first `claimed` bytes, the size that the camera announced, and counts the rest.
  explicit VectorSink(std::size_t claimed);

  void Append(std::span<const char> bytes) override;
  /// Bytes that arrived, kept or not.
  std::uint64_t Received() const { return received_; }
  /// Hands over what was kept.
  std::vector<char> Take() { return std::move(data_); }

 private:
  std::vector<char> data_;
  std::size_t limit_ = std::numeric_limits<std::size_t>::max();
  std::uint64_t received_ = 0;
};

/// How the chunks of one read are asked for.
struct ChunkedRead {
  std::uint8_t subCode;  ///< of the read command: `read_chunk::kBundle` or `read_chunk::kSelected`
  bool flag;             ///< handed to every transfer
  ReadProgress progress;
};

/// The chunked read loop: asks for `chunkSize` bytes at offset 0, chunkSize, 2 x chunkSize ... into one buffer until
/// the first chunk that is not full. `chunkSize` is read anew before each request. False when a transfer returned
/// false, when the next offset would not fit 32 bits, or when there is no positive chunk size; the sink's content is
/// then void.
bool ReadChunks(Camera& camera, const int& chunkSize, const ChunkedRead& read, ChunkSink& sink);

}  // namespace kelva

#endif  // KELVA_WIFI_CHUNKED_READ_H_

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

/// The most memory that is reserved because a camera announced it. Larger results grow as bytes arrive, so that a false
/// announcement costs nothing.
inline constexpr std::size_t kLargestReservation = std::size_t{64} * 1024 * 1024;

/// Receives the chunks of a read, in order, as they arrive.
class ChunkSink {
 public:
  virtual ~ChunkSink() = default;
  /// The bytes are valid during the call only.
  virtual void Append(std::span<const char> bytes) = 0;
};

/// Collects a read in one vector.
class VectorSink final : public ChunkSink {
 public:
  /// Keeps everything that arrives.
  VectorSink() = default;
  /// Keeps the first `claimed` bytes (the size that the camera announced) and counts the rest.
  explicit VectorSink(std::size_t claimed);

  void Append(std::span<const char> bytes) override;
  /// Bytes that arrived, kept or not.
  std::uint64_t Received() const { return received_; }
  /// Moves out the bytes that were kept.
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
/// false, the next offset exceeds 32 bits, or the chunk size is not positive; the sink then holds an unusable part.
bool ReadChunks(Camera& camera, const int& chunkSize, const ChunkedRead& read, ChunkSink& sink);

}  // namespace kelva

#endif  // KELVA_WIFI_CHUNKED_READ_H_

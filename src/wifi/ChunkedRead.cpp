// The read loop behind every command that fetches more than a short answer.

#include "ChunkedRead.h"

#include <algorithm>
#include <limits>

#include "Command.h"
#include "LittleEndian.h"

namespace kelva {

VectorSink::VectorSink(std::size_t claimed) : limit_(claimed) {
  data_.reserve(std::min(claimed, kLargestReservation));
}

void VectorSink::Append(std::span<const char> bytes) {
  received_ += bytes.size();
  const std::span<const char> kept = bytes.first(std::min(bytes.size(), limit_ - data_.size()));
  data_.insert(data_.end(), kept.begin(), kept.end());
}

bool ReadChunks(Camera& camera, const int& chunkSize, const ChunkedRead& read, ChunkSink& sink) {
  _VscCdb cdb = Block(Operation::kReadChunk, read.subCode);
  std::vector<char> buffer;
  for (std::uint32_t offset = 0;;) {
    read.progress.BeforeChunk(offset);
    const int asked = chunkSize;  // a copy: the transfer below may change the camera's chunk size
    if (asked <= 0) return false;
    const auto capacity = static_cast<std::uint32_t>(asked);
    if (buffer.size() < capacity) buffer.resize(capacity);
    StoreU32(cdb.bytes + at::kReadOffset, offset);
    int moved = asked;
    if (!camera.Transfer(cdb, kFromCamera, moved, buffer.data(), read.flag)) return false;
    sink.Append({buffer.data(), BytesArrived(moved, capacity)});
    if (moved != asked) return true;
    // The offset has 32 bits on the wire. A camera that never sends a short chunk must not start over at 0.
    if (offset > std::numeric_limits<std::uint32_t>::max() - capacity) return false;
    offset += capacity;
  }
}

}  // namespace kelva

#ifndef KELVA_BUS_FRAME_READER_H_
#define KELVA_BUS_FRAME_READER_H_

#include <optional>

#include "bus/Protocol.h"

namespace bus {

/// Cuts a stream into frames. Holds the bytes that have arrived; an announced length reserves no memory.
class FrameReader {
 public:
  void Feed(std::span<const std::uint8_t> bytes);
  /// The same without a copy: a place for `count` bytes more, valid until the next call of any member, and how many came there.
  std::span<std::uint8_t> Room(std::size_t count);
  void Came(std::size_t count) { end_ += broken_ ? 0 : count; }
  /// The next whole frame, if there is one.
  std::optional<Frame> Next();
  /// Whether the stream announced a frame that is too short or too long; nothing is read after that.
  bool Broken() const { return broken_; }

 private:
  std::optional<std::size_t> FrameLength();

  std::span<const std::uint8_t> Held() const { return std::span(buffer_).subspan(start_, end_ - start_); }

  base::Bytes buffer_;
  std::size_t start_ = 0;  // of what is in no frame yet
  std::size_t end_ = 0;    // behind what has arrived
  bool broken_ = false;
};

}  // namespace bus

#endif  // KELVA_BUS_FRAME_READER_H_

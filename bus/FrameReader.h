#ifndef KELVA_BUS_FRAME_READER_H_
#define KELVA_BUS_FRAME_READER_H_

#include <optional>

#include "bus/Protocol.h"

namespace bus {

/// Cuts a stream into frames. Holds the bytes that have arrived; an announced length reserves no memory.
class FrameReader {
 public:
  void Feed(std::span<const std::uint8_t> bytes);
  /// The next whole frame, if there is one.
  std::optional<Frame> Next();
  /// Whether the stream announced a frame that is too short or too long; nothing is read after that.
  bool Broken() const { return broken_; }

 private:
  std::optional<std::size_t> FrameLength();

  base::Bytes buffer_;
  std::size_t start_ = 0;
  bool broken_ = false;
};

}  // namespace bus

#endif  // KELVA_BUS_FRAME_READER_H_

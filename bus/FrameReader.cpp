// Cuts the bytes of a socket into the bus's frames.
#include "bus/FrameReader.h"

namespace bus {
namespace {

constexpr std::size_t kLengthField = sizeof(std::uint32_t);

}  // namespace

void FrameReader::Feed(std::span<const std::uint8_t> bytes) {
  if (broken_) return;
  if (start_ > 0) {
    buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(start_));
    start_ = 0;
  }
  buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
}

std::optional<std::size_t> FrameReader::FrameLength() {
  if (broken_ || buffer_.size() - start_ < kLengthField) return std::nullopt;
  const std::size_t length = base::Load<std::uint32_t>(buffer_, start_);
  broken_ = length < kFrameHeader || length > kMaxFrame;
  if (broken_ || buffer_.size() - start_ - kLengthField < length) return std::nullopt;
  return length;
}

std::optional<Frame> FrameReader::Next() {
  const std::optional<std::size_t> length = FrameLength();
  if (!length) return std::nullopt;
  const std::span<const std::uint8_t> bytes = std::span(buffer_).subspan(start_ + kLengthField, *length);
  start_ += kLengthField + *length;
  const std::span<const std::uint8_t> payload = bytes.subspan(kFrameHeader);
  return Frame{static_cast<Kind>(bytes[0]), base::Load<std::uint32_t>(bytes, 1), {payload.begin(), payload.end()}};
}

}  // namespace bus

// Cuts the bytes of a socket into the bus's frames.
#include "bus/FrameReader.h"

#include <algorithm>

namespace bus {
namespace {

constexpr std::size_t kLengthField = sizeof(std::uint32_t);

}  // namespace

void FrameReader::Feed(std::span<const std::uint8_t> bytes) {
  std::copy(bytes.begin(), bytes.end(), Room(bytes.size()).begin());
  Came(bytes.size());
}

std::span<std::uint8_t> FrameReader::Room(std::size_t count) {
  const std::span<const std::uint8_t> held = Held();
  std::copy(held.begin(), held.end(), buffer_.begin());
  start_ = 0;
  end_ = held.size();
  if (buffer_.size() < end_ + count) buffer_.resize(end_ + count);
  return std::span(buffer_).subspan(end_, count);
}

std::optional<std::size_t> FrameReader::FrameLength() {
  const std::span<const std::uint8_t> held = Held();
  if (broken_ || held.size() < kLengthField) return std::nullopt;
  const std::size_t length = base::Load<std::uint32_t>(held, 0);
  broken_ = length < kFrameHeader || length > kMaxFrame;
  if (broken_ || held.size() - kLengthField < length) return std::nullopt;
  return length;
}

std::optional<Frame> FrameReader::Next() {
  const std::optional<std::size_t> length = FrameLength();
  if (!length) return std::nullopt;
  const std::span<const std::uint8_t> bytes = Held().subspan(kLengthField, *length);
  start_ += kLengthField + *length;
  const std::span<const std::uint8_t> payload = bytes.subspan(kFrameHeader);
  return Frame{static_cast<Kind>(bytes[0]), base::Load<std::uint32_t>(bytes, 1), {payload.begin(), payload.end()}};
}

}  // namespace bus

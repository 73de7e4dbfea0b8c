// The socket of the virtual bus: a stream cut into frames in two pieces, and every payload decoder on each frame.

#include "bus/FrameReader.h"
#include "bus/Protocol.h"

namespace {

using namespace bus;
using base::Bytes;

void DecodeAll(const Bytes& payload) {
  Decode<PlugRequest>(payload);
  Decode<FaultRequest>(payload);
  Decode<CameraStatus>(payload);
  Decode<std::vector<CameraStatus>>(payload);
  Decode<ErrorAnswer>(payload);
  Decode<wire::Reply>(payload);
  Decode<std::uint32_t>(payload);
  Decode<std::string>(payload);
  const auto command = Decode<wire::Command>(payload);
  if (command && command->data.size() > command->length) __builtin_trap();
}

void ReadFrames(FrameReader& reader) {
  while (const std::optional<Frame> frame = reader.Next()) DecodeAll(frame->payload);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::uint8_t> input(data, size);
  DecodeAll(Bytes(input.begin(), input.end()));
  const std::size_t piece = size == 0 ? 0 : data[0] % size;
  FrameReader reader;
  reader.Feed(input.first(piece));
  ReadFrames(reader);
  reader.Feed(input.subspan(piece));
  ReadFrames(reader);
  return 0;
}

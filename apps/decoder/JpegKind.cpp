// Tells a JPEG file that comes in one pass from one in several, which needs more memory.
#include "apps/decoder/JpegKind.h"

#include <cstddef>
#include <optional>

namespace apps {
namespace {

constexpr int kBaseline = 0xC0;  // SOF0 and SOF1 may have one pass, the other kinds of frames have several
constexpr int kExtended = 0xC1;
constexpr int kStartOfScan = 0xDA;

// Where the number of components stands, from the segment's start.
constexpr std::size_t kComponentsInFrame = 9;
constexpr std::size_t kComponentsInScan = 4;

int ByteAt(std::span<const char> bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}

std::optional<int> NumberAt(std::span<const char> bytes, std::size_t at) {
  return at < bytes.size() ? std::optional(ByteAt(bytes, at)) : std::nullopt;
}

// Markers without a length behind them, and the byte that may stand before any marker. What follows those is not followed
// here, so that no other segment can be made up.
bool HasNoLength(int marker) {
  return marker < 0xC0 || (marker >= 0xD0 && marker <= 0xD9) || marker == 0xFF;
}

// Codings of frames: SOF0 to SOF15 but for DHT, JPG and DAC, which share their range.
bool IsFrame(int marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

}  // namespace

bool ComesRowByRow(std::span<const char> bytes) {
  std::optional<int> components;
  // From segment to segment: FF, the marker, the length of the rest in two bytes.
  std::size_t at = 2;
  while (bytes.size() >= 4 && at <= bytes.size() - 4 && ByteAt(bytes, at) == 0xFF) {
    const int marker = ByteAt(bytes, at + 1);
    if (HasNoLength(marker)) return false;
    if (IsFrame(marker)) {
      if (components || (marker != kBaseline && marker != kExtended)) return false;
      components = NumberAt(bytes, at + kComponentsInFrame);
    }
    // With a scan for each component the decoder keeps them all until the last one has come.
    if (marker == kStartOfScan) return components && components == NumberAt(bytes, at + kComponentsInScan);
    at += 2 + static_cast<std::size_t>(ByteAt(bytes, at + 2) << 8 | ByteAt(bytes, at + 3));
  }
  return false;
}

}  // namespace apps

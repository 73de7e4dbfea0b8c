// Tells a baseline JPEG file from a progressive one, which needs more memory.
#include "apps/kelva/sheet/JpegKind.h"

#include <cstddef>

namespace apps {
namespace {

constexpr int kBaseline = 0xC0;  // SOF0 and SOF1 have one pass, the other kinds of frames may have several
constexpr int kExtended = 0xC1;
constexpr int kStartOfScan = 0xDA;

int ByteAt(std::span<const char> bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}

// Codings of frames: SOF0 to SOF15 but for DHT, JPG and DAC, which share their range.
bool IsFrame(int marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

}  // namespace

bool ComesRowByRow(std::span<const char> bytes) {
  // From segment to segment: FF, the marker, the length of the rest in two bytes.
  std::size_t at = 2;
  while (bytes.size() >= 4 && at <= bytes.size() - 4 && ByteAt(bytes, at) == 0xFF) {
    const int marker = ByteAt(bytes, at + 1);
    if (IsFrame(marker)) return marker == kBaseline || marker == kExtended;
    if (marker == kStartOfScan) return false;
    at += 2 + static_cast<std::size_t>(ByteAt(bytes, at + 2) << 8 | ByteAt(bytes, at + 3));
  }
  return false;
}

}  // namespace apps

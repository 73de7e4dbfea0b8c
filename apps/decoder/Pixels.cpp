// Shrinks and turns images.
#include "apps/decoder/Pixels.h"

#include <algorithm>
#include <array>

namespace apps {
namespace {

// How to turn an image upright, by EXIF orientation: swap rows and columns, then reverse either axis.
struct Turn {
  bool swap;
  bool flipX;
  bool flipY;
};
constexpr std::array<Turn, 9> kTurns = {{{false, false, false},
                                         {false, false, false},
                                         {false, true, false},
                                         {false, true, true},
                                         {false, false, true},
                                         {true, false, false},
                                         {true, false, true},
                                         {true, true, true},
                                         {true, true, false}}};

Pixels Blank(int width, int height) {
  return {width, height,
          std::vector<std::uint8_t>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3)};
}

struct Range {
  int begin;
  int end;
};

// The source pixels that one target pixel stands for.
Range Covered(int target, int targets, int sources) {
  const auto edge = [&](int at) { return static_cast<int>(static_cast<long long>(at) * sources / targets); };
  return {edge(target), std::max(edge(target + 1), edge(target) + 1)};
}

void PutAverage(const Pixels& image, Range xs, Range ys, std::uint8_t* out) {
  std::array<std::uint64_t, 3> sum{};
  for (int y = ys.begin; y < ys.end; ++y) {
    const std::uint8_t* in = image.rgb.data() + image.At(xs.begin, y);
    for (int x = xs.begin; x < xs.end; ++x) {
      for (std::uint64_t& channel : sum) channel += *in++;
    }
  }
  const auto count = static_cast<std::uint64_t>(xs.end - xs.begin) * static_cast<std::uint64_t>(ys.end - ys.begin);
  for (const std::uint64_t channel : sum) *out++ = static_cast<std::uint8_t>((channel + count / 2) / count);
}

}  // namespace

Pixels Upright(const Pixels& image, int orientation) {
  if (orientation < 2 || orientation > 8) return image;
  const Turn turn = kTurns[static_cast<std::size_t>(orientation)];
  Pixels out = turn.swap ? Blank(image.height, image.width) : Blank(image.width, image.height);
  for (int y = 0; y < out.height; ++y) {
    for (int x = 0; x < out.width; ++x) {
      const int alongX = turn.swap ? y : x;
      const int alongY = turn.swap ? x : y;
      const std::size_t from =
          image.At(turn.flipX ? image.width - 1 - alongX : alongX, turn.flipY ? image.height - 1 - alongY : alongY);
      std::copy_n(image.rgb.data() + from, 3, out.rgb.data() + out.At(x, y));
    }
  }
  return out;
}

Pixels Shrunk(const Pixels& image, int longest) {
  const int longer = std::max(image.width, image.height);
  if (longer <= longest) return image;
  const auto scaled = [&](int side) {
    return std::max(1, static_cast<int>((static_cast<long long>(side) * longest + longer / 2) / longer));
  };
  Pixels out = Blank(scaled(image.width), scaled(image.height));
  for (int y = 0; y < out.height; ++y) {
    for (int x = 0; x < out.width; ++x) {
      PutAverage(image, Covered(x, out.width, image.width), Covered(y, out.height, image.height),
                 out.rgb.data() + out.At(x, y));
    }
  }
  return out;
}

}  // namespace apps

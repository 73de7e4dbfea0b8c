// Draws landscapes out of integers, so that every machine draws the same.
#include "tools/draw-pictures/Scene.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

struct Colour {
  int red, green, blue;
};

constexpr int kRidges = 3;
constexpr int kHours = 8;

/// Between `from` and `to`, at `step` of `steps`.
Colour Blend(Colour from, Colour to, int step, int steps) {
  auto mix = [&](int a, int b) { return a + (b - a) * step / steps; };
  return {mix(from.red, to.red), mix(from.green, to.green), mix(from.blue, to.blue)};
}

/// A triangle wave in 0..height: integers only, so that no machine's arithmetic changes a picture.
int Wave(int x, int period, int height) {
  const int phase = x % period;
  const int up = phase < period / 2 ? phase : period - phase;
  return up * height * 2 / period;
}

Colour Sky(int y, int height, int hour) {
  const Colour zenith = Blend({28, 60, 140}, {70, 40, 90}, hour, kHours);
  const Colour horizon = Blend({170, 205, 235}, {250, 150, 80}, hour, kHours);
  return Blend(zenith, horizon, std::min(y, height), height);
}

/// The height of a ridge's skyline above the bottom.
int Skyline(int x, int ridge, int width, int height, int number) {
  const int shifted = x + number * 137 + ridge * 911;
  const int period = std::max(2, width / (2 + ridge));
  return height / (3 + ridge) + Wave(shifted, period, height / 6) + Wave(shifted * 7, period, height / 40 + 1);
}

bool InSun(int x, int y, int width, int height, int hour) {
  const int dx = x - width * (hour + 1) / (kHours + 1);
  const int dy = y - height / 5 - hour * height / 40;
  const int radius = height / 14;
  return dx * dx + dy * dy < radius * radius;
}

Colour PixelAt(int x, int y, int width, int height, int number) {
  constexpr std::array<Colour, kRidges> kRidgeColours = {{{96, 120, 150}, {60, 95, 80}, {30, 55, 35}}};
  const int hour = number % kHours;
  for (int ridge = kRidges - 1; ridge >= 0; --ridge) {
    if (height - y <= Skyline(x, ridge, width, height, number)) {
      return Blend(kRidgeColours[static_cast<std::size_t>(ridge)], {20, 15, 40}, hour, kHours * 2);
    }
  }
  return InSun(x, y, width, height, hour) ? Colour{255, 240, 190} : Sky(y, height, hour);
}

}  // namespace

Image DrawScene(int width, int height, int number) {
  Image image{width, height, {}};
  image.rgb.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const Colour colour = PixelAt(x, y, width, height, number);
      for (int part : {colour.red, colour.green, colour.blue}) {
        image.rgb.push_back(static_cast<std::uint8_t>(std::clamp(part, 0, 255)));
      }
    }
  }
  return image;
}

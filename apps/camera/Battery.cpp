// A battery level in a unit that only the camera knows.
#include "apps/camera/Battery.h"

#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstdio>

namespace apps {

bool IsReadableLevel(float level) {
  return level == 0.0F || (level >= 0.001F && level <= 1e6F);
}

std::string LevelText(float level) {
  if (!IsReadableLevel(level)) return LevelBits(level);
  std::array<char, 64> text{};
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), level).ptr};
}

std::string LevelBits(float level) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%08x", std::bit_cast<std::uint32_t>(level));
  return text.data();
}

}  // namespace apps

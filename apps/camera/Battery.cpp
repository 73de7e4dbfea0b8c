// A battery level in a unit that only the camera knows.
#include "apps/camera/Battery.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstdio>

#include "apps/commandline/Decimal.h"

namespace apps {

bool IsReadableLevel(float level) {
  return level == 0.0F || (level >= 0.001F && level <= 1e6F);
}

std::string LevelText(float level) {
  if (!IsReadableLevel(level)) return LevelBits(level);
  return Shortest(level);
}

std::string LevelBits(float level) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%08x", std::bit_cast<std::uint32_t>(level));
  return text.data();
}

}  // namespace apps

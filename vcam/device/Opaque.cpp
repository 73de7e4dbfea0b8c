// Bytes without a meaning, in place of what this project has made up.
#include "vcam/device/Opaque.h"

#include <algorithm>
#include <random>
#include <vector>

namespace vcam {

void MakeOpaque(std::optional<std::uint32_t> seed, std::string_view name, std::span<std::uint8_t> bytes) {
  if (!seed) return;
  std::vector<std::uint32_t> entropy(name.begin(), name.end());
  entropy.push_back(*seed);
  std::seed_seq sequence(entropy.begin(), entropy.end());
  std::mt19937 random(sequence);
  std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::uint8_t>(random() >> 24); });
}

}  // namespace vcam

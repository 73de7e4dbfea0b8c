#ifndef KELVA_BASE_TESTING_RANDOM_SEED_H_
#define KELVA_BASE_TESTING_RANDOM_SEED_H_

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace base {

/// The seed of a test's random numbers: KELVA_RANDOM_SEED of the environment, or the same in every run. Printed, so that
/// a failure can be repeated.
inline std::uint32_t RandomSeed() {
  constexpr std::uint32_t kUsual = 20260314;
  const char* given = std::getenv("KELVA_RANDOM_SEED");
  const auto seed = given != nullptr ? static_cast<std::uint32_t>(std::strtoul(given, nullptr, 10)) : kUsual;
  std::printf("KELVA_RANDOM_SEED=%u\n", seed);
  return seed;
}

}  // namespace base

#endif  // KELVA_BASE_TESTING_RANDOM_SEED_H_

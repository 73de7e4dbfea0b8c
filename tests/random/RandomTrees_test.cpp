#include <gmock/gmock.h>

#include <cstdlib>

#include "tests/random/Session.h"

// Seeded random storage trees and command sequences: what the host gets is what the storage folder says.
//
// KELVA_RANDOM_TREES says how many trees for each chunk size; KELVA_RANDOM_SEED is the first seed, so that a failure can
// be run again alone.

namespace tests::random {
namespace {

constexpr std::uint64_t kDefaultTrees = 60;
constexpr std::uint64_t kDefaultSeed = 1;
constexpr std::size_t kCommands = 25;

std::uint64_t FromEnvironment(const char* name, std::uint64_t otherwise) {
  const char* text = std::getenv(name);
  return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
}

class RandomTrees : public testing::TestWithParam<std::size_t> {};

TEST_P(RandomTrees, GiveTheHostWhatTheFolderSays) {
  const std::uint64_t trees = FromEnvironment("KELVA_RANDOM_TREES", kDefaultTrees);
  const std::uint64_t first = FromEnvironment("KELVA_RANDOM_SEED", kDefaultSeed);
  for (std::uint64_t seed = first; seed < first + trees && !HasFailure(); ++seed) {
    SCOPED_TRACE("KELVA_RANDOM_TREES=1 KELVA_RANDOM_SEED=" + std::to_string(seed));
    Session(seed, GetParam()).Run(kCommands);
  }
}

INSTANTIATE_TEST_SUITE_P(ChunkSizes, RandomTrees, testing::Values(16, 700, 4096, 65536),
                         [](const auto& param) { return std::to_string(param.param); });

}  // namespace
}  // namespace tests::random

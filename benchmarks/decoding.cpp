// Decoding of catalogues and listings, and the walk of a tree, over growing sizes: the cost must grow with the size alone.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/Answers.h"
#include "benchmarks/MemoryCamera.h"
#include "src/wifi/VscRegister.h"

namespace {

constexpr std::size_t kFilesPerDirectory = 100;
const char* const kRoot = "I:\\DCIM";

std::string FileName(std::size_t number) {
  return "IMG_" + std::to_string(number) + ".JPG";
}

std::vector<bench::Entry> Files(std::size_t count) {
  std::vector<bench::Entry> entries;
  entries.reserve(count);
  for (std::size_t i = 0; i < count; ++i) entries.push_back({FileName(i), false});
  return entries;
}

void GetDcf(benchmark::State& state) {
  const auto pictures = static_cast<std::size_t>(state.range(0));
  bench::MemoryCamera camera;
  camera.PutDataSet(kelva::select::kCatalogue, bench::Catalogue(pictures));
  for (auto _ : state) {
    if (camera.GetDcf().size() != pictures) {
      state.SkipWithError("the catalogue did not come whole");
      return;
    }
  }
}

/// The memory's own part in GetDcf: a copy of as many bytes into a new buffer. It leaves the caches as sizes grow.
void CopyOfCatalogue(benchmark::State& state) {
  const std::string answer = bench::Catalogue(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    std::unique_ptr<char[]> target(new char[answer.size()]);
    std::memcpy(target.get(), answer.data(), answer.size());
    benchmark::DoNotOptimize(target.get());
    benchmark::ClobberMemory();
  }
}

void ReadDir(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  bench::MemoryCamera camera;
  camera.PutListing(kRoot, bench::Listing(Files(count)));
  for (auto _ : state) {
    if (camera.ReadDir(kRoot).size() != count) {
      state.SkipWithError("the listing did not come whole");
      return;
    }
  }
}

/// A tree of two levels: directories of a hundred files each.
void PutTree(bench::MemoryCamera& camera, std::size_t files) {
  std::vector<bench::Entry> directories;
  for (std::size_t i = 0; i < files / kFilesPerDirectory; ++i) {
    directories.push_back({"D" + std::to_string(i), true});
    camera.PutListing(std::string(kRoot) + "\\" + directories.back().name, bench::Listing(Files(kFilesPerDirectory)));
  }
  camera.PutListing(kRoot, bench::Listing(directories));
}

void TraverseDir(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  bench::MemoryCamera camera;
  PutTree(camera, count);
  for (auto _ : state) {
    std::vector<std::pair<std::string, long long>> files;
    camera.TraverseDir(kRoot, files);
    if (files.size() != count) {
      state.SkipWithError("the walk missed files");
      return;
    }
  }
}

BENCHMARK(GetDcf)->RangeMultiplier(10)->Range(1000, 1000000)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(CopyOfCatalogue)->RangeMultiplier(10)->Range(1000, 1000000)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(ReadDir)->RangeMultiplier(10)->Range(100, 100000)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(TraverseDir)->RangeMultiplier(10)->Range(100, 100000)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace

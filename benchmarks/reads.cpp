// Whole reads from a camera in memory, beside the copy that nothing can do without.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "benchmarks/Answers.h"
#include "benchmarks/MemoryCamera.h"
#include "src/wifi/VscRegister.h"

namespace {

constexpr std::size_t kMiB = 1024 * 1024;
constexpr std::size_t kFileSize = 64 * kMiB;
constexpr std::size_t kBodySize = 2 * kMiB;
constexpr std::size_t kBodies = 31;
const char* const kPath = "I:\\DCIM\\100KELVA\\IMG_0001.RAW";

/// One memcpy into a newly allocated buffer. new char[] leaves the buffer untouched, as malloc does.
void CopyOnce(benchmark::State& state) {
  const auto size = static_cast<std::size_t>(state.range(0));
  const std::string source = bench::Noise(size);
  for (auto _ : state) {
    std::unique_ptr<char[]> target(new char[size]);
    std::memcpy(target.get(), source.data(), size);
    benchmark::DoNotOptimize(target.get());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

void ReadFile(benchmark::State& state) {
  bench::MemoryCamera camera;
  camera.PutFile(kPath, bench::Noise(kFileSize));
  for (auto _ : state) {
    const std::vector<char> file = camera.ReadFile(kPath, nullptr, nullptr, true);
    if (file.size() != kFileSize) {
      state.SkipWithError("the file came short");
      return;
    }
    benchmark::DoNotOptimize(file.data());
  }
}

/// Runs a bulk read that must give kBodies files of kBodySize bytes.
template <typename Read>
void BulkRead(benchmark::State& state, Read read) {
  for (auto _ : state) {
    const std::vector<_Sha1obj> files = read();
    if (files.size() != kBodies || files.back().data.size() != kBodySize) {
      state.SkipWithError("the bundle did not come whole");
      return;
    }
    benchmark::DoNotOptimize(files.data());
  }
}

void ReadCrashLogs(benchmark::State& state) {
  bench::MemoryCamera camera;
  camera.PutDataSet(kelva::select::kCrashLogs, bench::CrashLogBundle(kBodies, kBodySize));
  BulkRead(state, [&] { return camera.ReadCrashLogs(nullptr, nullptr, false, true); });
}

void ReadCalibration(benchmark::State& state) {
  bench::MemoryCamera camera;
  camera.PutDataSet(kelva::select::kCalibration, bench::CalibrationBundle(kBodySize));
  BulkRead(state, [&] { return camera.ReadCalibration(nullptr, nullptr, true); });
}

void ReadFilesBySha1(benchmark::State& state) {
  bench::MemoryCamera camera;
  camera.PutDataSet(kelva::select::kBatch, bench::BatchBundle(kBodies, kBodySize));
  const std::vector<std::string> keys(kBodies, std::string(40, 'a'));
  const std::vector<std::string> qualifiers(kBodies, "J");
  BulkRead(state, [&] { return camera.ReadFilesBySha1(keys, qualifiers, nullptr, nullptr, true); });
}

BENCHMARK(CopyOnce)->Arg(kFileSize)->Arg(kBodies* kBodySize)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ReadFile)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ReadCrashLogs)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ReadCalibration)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ReadFilesBySha1)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

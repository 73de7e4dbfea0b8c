#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "FileReader.h"
#include "FileWriter.h"
#include "testing/PlainCamera.h"
#include "testing/Switches.h"

// What the commands allocate, seen by an operator new that counts.

namespace {

struct Counters {
  std::size_t allocations = 0;
  std::size_t live = 0;
  std::size_t peak = 0;
  std::size_t largest = 0;
};

Counters counters;

// In front of each block lies its size; the distance keeps the alignment of every type.
constexpr std::size_t kPrefix = alignof(std::max_align_t);

void* Allocate(std::size_t size) {
  void* const block = std::malloc(size + kPrefix);
  if (block == nullptr) throw std::bad_alloc();
  std::memcpy(block, &size, sizeof size);
  ++counters.allocations;
  counters.live += size;
  counters.peak = std::max(counters.peak, counters.live);
  counters.largest = std::max(counters.largest, size);
  return static_cast<char*>(block) + kPrefix;
}

void Free(void* pointer) noexcept {
  if (pointer == nullptr) return;
  char* const block = static_cast<char*>(pointer) - kPrefix;
  std::size_t size = 0;
  std::memcpy(&size, block, sizeof size);
  counters.live -= size;
  std::free(block);
}

}  // namespace

void* operator new(std::size_t size) {
  return Allocate(size);
}
void* operator new[](std::size_t size) {
  return Allocate(size);
}
void operator delete(void* pointer) noexcept {
  Free(pointer);
}
void operator delete[](void* pointer) noexcept {
  Free(pointer);
}
void operator delete(void* pointer, std::size_t) noexcept {
  Free(pointer);
}
void operator delete[](void* pointer, std::size_t) noexcept {
  Free(pointer);
}

namespace {

using wifi_testing::ExceptionsOff;
using wifi_testing::PlainCamera;

constexpr std::size_t kMebibyte = 1024 * 1024;

// A camera whose every selected data set is `claimed` bytes long by its own word, and in truth as long as `content`
// with zeros behind it up to `delivered`. Allocates nothing itself.
class Stream : public PlainCamera {
 public:
  Stream(int chunkSize, std::uint32_t claimed, std::size_t delivered, std::string content = "")
      : PlainCamera(chunkSize, 1 << 20), claimed_(claimed), left_(delivered), content_(std::move(content)) {}

  bool IsOpen() override { return true; }
  void ClearCancel(bool) override {}
  bool Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool) override {
    if (direction != 2) return true;
    if (cdb.bytes[0] == 0xC6) {
      std::memcpy(buffer, &claimed_, 4);
      return true;
    }
    const std::size_t count = std::min(left_, static_cast<std::size_t>(size));
    std::memset(buffer, 0, count);
    std::memcpy(buffer, content_.data() + std::min(sent_, content_.size()),
                std::min(count, content_.size() - std::min(sent_, content_.size())));
    left_ -= count;
    sent_ += count;
    size = static_cast<int>(count);
    return true;
  }

 private:
  std::uint32_t claimed_;
  std::size_t left_;
  std::string content_;
  std::size_t sent_ = 0;
};

// The counters of one command alone.
template <typename Command>
Counters Measure(Camera& camera, Command command) {
  counters.allocations = counters.largest = 0;
  const std::size_t before = counters.peak = counters.live;
  command(camera);
  Counters measured = counters;
  measured.peak -= before;
  return measured;
}

// The command with 8 chunks and with 4096 of them. A result of unknown size may grow as vectors do, by doubling.
template <typename Command>
void ExpectNoAllocationPerChunk(Command command) {
  Stream few(16, 8 * 16, 8 * 16);
  Stream many(16, 4096 * 16, 4096 * 16);
  const std::size_t base = Measure(few, command).allocations;
  EXPECT_LE(Measure(many, command).allocations, base + 16);
}

TEST(Allocations, AReadDoesNotAllocatePerChunk) {
  const ExceptionsOff off;
  ExpectNoAllocationPerChunk([](Camera& camera) { camera.ReadFile("x", nullptr, nullptr, true); });
  ExpectNoAllocationPerChunk([](Camera& camera) { camera.GetDcf(); });
  ExpectNoAllocationPerChunk([](Camera& camera) { camera.ReadDir("x"); });
}

TEST(Allocations, ABulkReadDoesNotAllocatePerChunk) {
  const ExceptionsOff off;
  ExpectNoAllocationPerChunk([](Camera& camera) { camera.ReadCrashLogs(nullptr, nullptr, false, true); });
  ExpectNoAllocationPerChunk([](Camera& camera) { camera.ReadFilesBySha1({"k"}, {""}, nullptr, nullptr, true); });
  ExpectNoAllocationPerChunk([](Camera& camera) { camera.ReadCompressedRaw("k", nullptr, nullptr, true); });
}

/// A reader's view of a camera that lies on the stack.
boost::shared_ptr<Camera> Shared(Camera& camera) {
  return {&camera, [](Camera*) {}};
}

TEST(Allocations, AReaderAllocatesNothingPerPieceOrPerChunk) {
  const auto readAll = [](Camera& camera) {
    kelva::FileReader reader(Shared(camera), "x");
    char piece[48];
    while (reader.ReadOn(piece) != 0) {
    }
  };
  Stream few(16, 8 * 16, 8 * 16);
  Stream many(16, 4096 * 16, 4096 * 16);
  const std::size_t base = Measure(few, readAll).allocations;
  EXPECT_EQ(Measure(many, readAll).allocations, base);
}

TEST(Allocations, AReaderThatSkipsAllocatesOneChunk) {
  Stream camera(65536, 64 * kMebibyte, 64 * kMebibyte);
  const Counters measured = Measure(camera, [](Camera& target) {
    kelva::FileReader reader(Shared(target), "x");
    char piece[16];
    reader.ReadOn(piece);
  });
  EXPECT_LE(measured.peak, 4096U);
  Stream skipped(65536, 64 * kMebibyte, 64 * kMebibyte);
  const Counters skip = Measure(skipped, [](Camera& target) {
    kelva::FileReader reader(Shared(target), "x");
    char piece[16];
    try {
      reader.Read(32 * kMebibyte, piece);  // this camera cannot begin anew
    } catch (const kelva::FileReadError&) {
    }
  });
  EXPECT_LE(skip.peak, 65536U + 4096U);
}

TEST(Allocations, AWriteDoesNotAllocatePerChunk) {
  const std::string data(65536, 'x');
  Stream camera(16, 0, 0);
  const auto write = [&](int length) {
    return [&, length](Camera& target) { target.WriteFile("x", data.data(), length, nullptr, nullptr); };
  };
  EXPECT_EQ(Measure(camera, write(65536)).allocations, Measure(camera, write(16)).allocations);
  const auto upgrade = [&](int length) {
    return [&, length](Camera& target) { target.Upgrade(data.data(), length, nullptr, nullptr); };
  };
  EXPECT_EQ(Measure(camera, upgrade(65536)).allocations, Measure(camera, upgrade(16)).allocations);
}

TEST(Allocations, AWriteFromASourceAllocatesOneChunk) {
  Stream camera(16, 0, 0);
  const kelva::ByteSource source = [](std::span<char>) {};
  const auto write = [&](std::uint32_t length) {
    return [&, length](Camera& target) { kelva::WriteFile(target, "x", length, source); };
  };
  const Counters measured = Measure(camera, write(65536));
  EXPECT_EQ(measured.allocations, Measure(camera, write(16)).allocations);
  EXPECT_EQ(measured.largest, 16U);
}

TEST(Allocations, AReadOfAClaimedSizeAllocatesItsResultOnce) {
  Stream camera(65536, 4 * kMebibyte, 4 * kMebibyte);
  const Counters measured = Measure(camera, [](Camera& target) { target.ReadFile("x", nullptr, nullptr, true); });
  EXPECT_LE(measured.peak, 4 * kMebibyte + 2 * 65536 + 4096);
}

// A claim is not memory: up to 64 MiB may be reserved on the camera's word, the rest has to arrive first.
template <typename Command>
void ExpectTheClaimIsNotBelieved(std::size_t delivered, Command command) {
  const ExceptionsOff off;
  Stream camera(65536, 0xFFFFFFFF, delivered);
  const Counters measured = Measure(camera, command);
  EXPECT_LE(measured.largest, 64 * kMebibyte);
  EXPECT_LE(measured.peak, 65 * kMebibyte + 4 * delivered);
}

TEST(Claims, OfFourGibibytesAreNotAllocated) {
  for (const std::size_t delivered : {std::size_t{0}, std::size_t{100}, std::size_t{300000}}) {
    ExpectTheClaimIsNotBelieved(delivered, [](Camera& camera) { camera.ReadFile("x", nullptr, nullptr, true); });
    ExpectTheClaimIsNotBelieved(delivered, [](Camera& camera) { camera.ReadCrashLogs(nullptr, nullptr, true, true); });
    ExpectTheClaimIsNotBelieved(delivered, [](Camera& camera) { camera.ReadCalibration(nullptr, nullptr, true); });
    ExpectTheClaimIsNotBelieved(delivered,
                                [](Camera& camera) { camera.ReadFilesBySha1({"k"}, {""}, nullptr, nullptr, true); });
    ExpectTheClaimIsNotBelieved(delivered,
                                [](Camera& camera) { camera.ReadCompressedRaw("k", nullptr, nullptr, true); });
  }
}

// The counts and sizes that a header announces are claims too; a catalogue and a listing have nothing to reserve for.
template <typename Command>
void ExpectBounded(std::size_t bound, const std::string& content, Command command) {
  const ExceptionsOff off;
  Stream camera(65536, static_cast<std::uint32_t>(content.size()), content.size(), content);
  const Counters measured = Measure(camera, command);
  EXPECT_LE(measured.largest, 64 * kMebibyte);
  EXPECT_LE(measured.peak, bound);
}

TEST(Claims, OfHeadersAreBoundedByWhatCame) {
  const std::string huge(400, '\xFF');
  const std::size_t reservable = 65 * kMebibyte;
  ExpectBounded(reservable, huge, [](Camera& camera) { camera.ReadCrashLogs(nullptr, nullptr, true, true); });
  ExpectBounded(reservable, huge, [](Camera& camera) { camera.ReadFilesBySha1({"k"}, {""}, nullptr, nullptr, true); });
  ExpectBounded(reservable, huge, [](Camera& camera) { camera.ReadCompressedRaw("k", nullptr, nullptr, true); });
  ExpectBounded(reservable, std::string(1200, '\xFF'),
                [](Camera& camera) { camera.ReadCalibration(nullptr, nullptr, true); });
}

TEST(Claims, OfCountsAreBoundedByWhatCame) {
  const std::string hugeCount = std::string(3, '\xFF') + '\x7F' + std::string(100, '\0');
  ExpectBounded(kMebibyte, std::string(4, '\0') + hugeCount, [](Camera& camera) { camera.ReadDir("x"); });
  ExpectBounded(kMebibyte, std::string("\1\0\0\0\1\0\0\0", 8) + hugeCount, [](Camera& camera) { camera.GetDcf(); });
}

template <typename Command>
void ExpectNothingKept(Command command) {
  const ExceptionsOff off;
  const std::size_t before = counters.live;
  for (const std::uint32_t claimed : {200u, 199u, 1000u, 0u}) {
    Stream camera(16, claimed, 200);
    command(camera);
  }
  EXPECT_EQ(counters.live, before);
}

TEST(Allocations, EveryByteIsGivenBack) {
  ExpectNothingKept([](Camera& camera) { camera.ReadFile("x", nullptr, nullptr, true); });
  ExpectNothingKept([](Camera& camera) { camera.GetDcf(); });
  ExpectNothingKept([](Camera& camera) { camera.ReadDir("x"); });
  ExpectNothingKept([](Camera& camera) { camera.ReadCrashLogs(nullptr, nullptr, true, true); });
  ExpectNothingKept([](Camera& camera) { camera.ReadCalibration(nullptr, nullptr, true); });
  ExpectNothingKept([](Camera& camera) { camera.ReadCompressedRaw("k", nullptr, nullptr, true); });
  ExpectNothingKept([](Camera& camera) {
    bool more = false;
    camera.ConsoleLog(more);
  });
}

}  // namespace

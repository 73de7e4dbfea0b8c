#include "tests/kernel/cases/ChunkLoops.h"

#include <fcntl.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <vector>

#include "base/FileDescriptor.h"

namespace {

constexpr std::uint32_t kChunk = 65'536;
constexpr unsigned kTimeoutMs = 100'000;
// SG_FLAG_MMAP_IO of the kernel, which the C library's header leaves out.
constexpr unsigned kMappedIo = 4;

using Block = std::array<unsigned char, 16>;

Block ReadingAt(std::uint32_t offset) {
  Block block{0xC4, 0, 1};
  std::memcpy(block.data() + 3, &offset, sizeof(offset));
  return block;
}

std::uint64_t TimeOf(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  const auto took = std::chrono::steady_clock::now() - begin;
  return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(took).count());
}

// `use` is given each offset and how many bytes there are from it.
void ForEachChunk(std::uint32_t size, const std::function<void(std::uint32_t, std::uint32_t)>& use) {
  for (std::uint32_t offset = 0; offset < size; offset += kChunk) use(offset, std::min(kChunk, size - offset));
}

// `read` fills the buffer with so many bytes from that offset, and tells how many came.
std::uint64_t TimeChunks(std::uint32_t size, const std::function<int(const Block&, char*, int)>& read) {
  std::vector<char> buffer(kChunk);
  return TimeOf([&] {
    ForEachChunk(size, [&](std::uint32_t offset, std::uint32_t length) {
      const int asked = static_cast<int>(length);
      if (read(ReadingAt(offset), buffer.data(), asked) != asked) throw std::runtime_error("A chunk was short.");
    });
  });
}

// Without a buffer the data stays in the kernel's own.
int BareRead(int fd, const Block& block, char* buffer, int length) {
  std::array<unsigned char, 32> sense{};
  Block command = block;
  sg_io_hdr_t header{};
  header.interface_id = 'S';
  header.dxfer_direction = SG_DXFER_FROM_DEV;
  header.cmd_len = command.size();
  header.cmdp = command.data();
  header.mx_sb_len = sense.size();
  header.sbp = sense.data();
  header.dxfer_len = static_cast<unsigned>(length);
  header.dxferp = buffer;
  header.flags = buffer == nullptr ? kMappedIo : 0;
  header.timeout = kTimeoutMs;
  if (::ioctl(fd, SG_IO, &header) != 0 || (header.info & SG_INFO_OK_MASK) != SG_INFO_OK) return -1;
  return length - header.resid;
}

base::FileDescriptor OpenNode(const std::string& node) {
  base::FileDescriptor file(::open(node.c_str(), O_RDWR | O_CLOEXEC));
  int reserved = kChunk;
  if (!file || ::ioctl(file.Get(), SG_SET_RESERVED_SIZE, &reserved) != 0) {
    throw std::runtime_error("Cannot use " + node);
  }
  return file;
}

// As a driver's buffer, which the compiler may not take for one that nobody reads.
std::vector<char> Source() {
  std::vector<char> source(kChunk);
  for (std::size_t i = 0; i < source.size(); ++i) source[i] = static_cast<char>(i * 31);
  return source;
}

}  // namespace

std::uint64_t TimeTransfers(Camera& camera, std::uint32_t size) {
  return TimeChunks(size, [&](const Block& block, char* buffer, int length) {
    _VscCdb command{};
    static_assert(sizeof(command) == sizeof(block));
    std::memcpy(&command, block.data(), sizeof(command));
    return camera.Transfer(command, 2, length, buffer, true) ? length : -1;
  });
}

std::uint64_t TimeBareLoop(const std::string& node, std::uint32_t size) {
  const base::FileDescriptor file = OpenNode(node);
  return TimeChunks(
      size, [&](const Block& block, char* buffer, int length) { return BareRead(file.Get(), block, buffer, length); });
}

std::uint64_t TimeMappedLoop(const std::string& node, std::uint32_t size) {
  const base::FileDescriptor file = OpenNode(node);
  void* mapped = ::mmap(nullptr, kChunk, PROT_READ, MAP_SHARED, file.Get(), 0);
  if (mapped == MAP_FAILED) throw std::runtime_error("Cannot map the buffer of " + node);
  const std::uint64_t took = TimeChunks(
      size, [&](const Block& block, char*, int length) { return BareRead(file.Get(), block, nullptr, length); });
  ::munmap(mapped, kChunk);
  return took;
}

std::uint64_t TimeCopies(std::uint32_t size) {
  const std::vector<char> source = Source();
  std::vector<char> target(kChunk);
  const std::uint64_t took = TimeOf([&] {
    ForEachChunk(size, [&](std::uint32_t offset, std::uint32_t length) {
      std::memcpy(target.data(), source.data(), length);
      target[offset / kChunk % kChunk] ^= 1;
    });
  });
  if (target.back() != source.back()) throw std::runtime_error("A copy differs.");
  return took;
}

std::uint64_t TimeGathering(std::uint32_t size) {
  const std::vector<char> source = Source();
  std::vector<char> file;
  const std::uint64_t took = TimeOf([&] {
    file.reserve(size);
    ForEachChunk(size, [&](std::uint32_t, std::uint32_t length) {
      file.insert(file.end(), source.begin(), source.begin() + static_cast<std::ptrdiff_t>(length));
    });
  });
  if (file.size() != size) throw std::runtime_error("The file is short.");
  return took;
}

std::uint64_t TimeReadFile(Camera& camera, const std::string& path) {
  return TimeOf([&] {
    if (camera.ReadFile(path.c_str(), nullptr, nullptr, true).empty()) throw std::runtime_error("Nothing was read.");
  });
}

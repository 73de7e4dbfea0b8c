#include "tests/kernel/cases/ChunkLoops.h"

#include <fcntl.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <vector>

#include "vcam/device/FileDescriptor.h"

namespace {

constexpr std::uint32_t kChunk = 65'536;
constexpr unsigned kTimeoutMs = 100'000;

using Block = std::array<unsigned char, 16>;

Block ReadingAt(std::uint32_t offset) {
  Block block{0xC4, 0, 1};
  std::memcpy(block.data() + 3, &offset, sizeof(offset));
  return block;
}

// `read` fills the buffer with so many bytes from that offset, and tells how many came.
std::uint64_t TimeChunks(std::uint32_t size, const std::function<int(const Block&, char*, int)>& read) {
  std::vector<char> buffer(kChunk);
  const auto begin = std::chrono::steady_clock::now();
  for (std::uint32_t offset = 0; offset < size; offset += kChunk) {
    const int asked = static_cast<int>(std::min(kChunk, size - offset));
    if (read(ReadingAt(offset), buffer.data(), asked) != asked) throw std::runtime_error("A chunk was short.");
  }
  const auto took = std::chrono::steady_clock::now() - begin;
  return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(took).count());
}

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
  header.timeout = kTimeoutMs;
  if (::ioctl(fd, SG_IO, &header) != 0 || (header.info & SG_INFO_OK_MASK) != SG_INFO_OK) return -1;
  return length - header.resid;
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
  const vcam::FileDescriptor file(::open(node.c_str(), O_RDWR | O_CLOEXEC));
  int reserved = kChunk;
  if (!file || ::ioctl(file.get(), SG_SET_RESERVED_SIZE, &reserved) != 0)
    throw std::runtime_error("Cannot use " + node);
  return TimeChunks(
      size, [&](const Block& block, char* buffer, int length) { return BareRead(file.get(), block, buffer, length); });
}

// The loop of the process that decodes pictures.
#include "apps/decoder/Worker.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <vector>

#include "apps/decoder/Drawing.h"
#include "apps/decoder/Exif.h"
#include "base/SendAll.h"

namespace apps {
namespace {

/// Fills `bytes` with read, which the filter of system calls allows. Returns how many came before the end.
std::size_t ReadAll(int descriptor, std::span<char> bytes) {
  std::size_t filled = 0;
  while (filled < bytes.size()) {
    const ssize_t count = ::read(descriptor, bytes.data() + filled, bytes.size() - filled);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    filled += static_cast<std::size_t>(count);
  }
  return filled;
}

}  // namespace

bool DrawAll(int descriptor) {
  // Kept from picture to picture, so that its pages need not come anew for each. A large one would fill the memory of
  // every process for good.
  constexpr std::size_t kMostKept = std::size_t{32} << 20;
  std::vector<char> file;
  if (base::WriteAll(descriptor, kReady) != 0) return false;
  for (;;) {
    std::array<char, 8> head{};
    const std::size_t came = ReadAll(descriptor, head);
    if (came == 0) return true;
    const auto asked = base::Load<std::uint64_t>(std::span(reinterpret_cast<const std::uint8_t*>(head.data()), 8), 0);
    const std::uint64_t size = asked & ~kTimeOnly;
    if (came != head.size() || size > kLargestPicture) return false;
    if (file.size() < size) file.resize(size);
    const std::span<char> picture(file.data(), size);
    if (ReadAll(descriptor, picture) != size) return false;
    const base::Bytes answer = size == asked ? EncodeAnswer(Draw(picture)) : EncodeTime(ReadExif(picture).time);
    if (base::WriteAll(descriptor, {reinterpret_cast<const char*>(answer.data()), answer.size()}) != 0) return false;
    if (file.size() > kMostKept) std::vector<char>().swap(file);
  }
}

}  // namespace apps

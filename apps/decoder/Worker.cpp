// The loop of the process that decodes pictures.
#include "apps/decoder/Worker.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "apps/decoder/Drawing.h"
#include "apps/decoder/Exif.h"
#include "base/SendAll.h"

namespace apps {
namespace {

/// Requests and answers. Small requests come many at a time, and their answers go back together: a system call for each
/// would cost more than to read the time of a picture.
class Exchange {
 public:
  explicit Exchange(int descriptor) : descriptor_(descriptor), buffer_(kBuffer) {}

  /// Fills `bytes`. Returns how many came before the end.
  std::size_t Take(std::span<char> bytes) {
    std::size_t filled = 0;
    while (filled < bytes.size()) {
      const std::size_t count = std::min(end_ - begin_, bytes.size() - filled);
      std::copy_n(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_), count,
                  bytes.begin() + static_cast<std::ptrdiff_t>(filled));
      begin_ += count;
      filled += count;
      if (filled < bytes.size() && !Read(bytes, filled)) break;
    }
    return filled;
  }
  /// Gives an answer, at once or with those behind it.
  bool Give(const base::Bytes& answer) {
    answers_.insert(answers_.end(), answer.begin(), answer.end());
    return answers_.size() < kMostKept || Flush();
  }
  /// Gives what was kept.
  bool Flush() {
    const base::Bytes answers = std::exchange(answers_, {});
    return base::WriteAll(descriptor_, {reinterpret_cast<const char*>(answers.data()), answers.size()}) == 0;
  }

 private:
  static constexpr std::size_t kBuffer = std::size_t{256} << 10;
  static constexpr std::size_t kMostKept = 4096;

  // With read, which the filter of system calls allows. The other end waits for the answers before it sends more.
  bool Read(std::span<char> bytes, std::size_t& filled) {
    if (!answers_.empty() && !Flush()) return false;
    const std::span<char> rest = bytes.subspan(filled);
    const std::span<char> target = rest.size() >= buffer_.size() ? rest : std::span(buffer_);
    ssize_t count = -1;
    do {
      count = ::read(descriptor_, target.data(), target.size());
    } while (count < 0 && errno == EINTR);
    if (count <= 0) return false;
    if (target.data() == rest.data()) {
      filled += static_cast<std::size_t>(count);
    } else {
      begin_ = 0;
      end_ = static_cast<std::size_t>(count);
    }
    return true;
  }

  const int descriptor_;
  std::vector<char> buffer_;
  std::size_t begin_ = 0;  // what is left in the buffer
  std::size_t end_ = 0;
  base::Bytes answers_;
};

base::Bytes Answer(std::uint64_t asked, std::span<const char> picture) {
  if ((asked & kTimeOnly) != 0) return EncodeTime(ReadExif(picture).time);
  if ((asked & kStartOnly) != 0) return EncodeAnswer(DrawStart(picture));
  return EncodeAnswer(Draw(picture, (asked & kShownLarge) != 0 ? kLargeSide : kThumbnailSide));
}

}  // namespace

bool DrawAll(int descriptor) {
  // Kept from picture to picture, so that its pages need not come anew for each. A large one would fill the memory of
  // every process for good.
  constexpr std::size_t kMostKept = std::size_t{32} << 20;
  std::vector<char> file;
  Exchange exchange(descriptor);
  if (base::WriteAll(descriptor, kReady) != 0) return false;
  for (;;) {
    std::array<char, 8> head{};
    const std::size_t came = exchange.Take(head);
    if (came == 0) return true;
    const auto asked = base::Load<std::uint64_t>(std::span(reinterpret_cast<const std::uint8_t*>(head.data()), 8), 0);
    const std::uint64_t size = asked & ~(kTimeOnly | kStartOnly | kShownLarge);
    if (came != head.size() || size > kLargestPicture) return false;
    if (file.size() < size) file.resize(size);
    const std::span<char> picture(file.data(), size);
    if (exchange.Take(picture) != size || !exchange.Give(Answer(asked, picture))) return false;
    if (file.size() > kMostKept) std::vector<char>().swap(file);
  }
}

}  // namespace apps

// A line of programs that wait for one camera, made of locks that vanish with their process.

#include "apps/camera/WaitingLine.h"

#include <fcntl.h>

#include <chrono>

namespace apps {
namespace {

// A folder may serve several cameras, so each has 2^48 bytes of the 2^63 that can be locked. Microseconds of this
// machine's time since its start fill them in nine years.
constexpr int kTimeBits = 48;
constexpr std::uint64_t kCameras = 1U << 15U;
constexpr std::uint64_t kLongMark = (std::uint64_t{1} << kTimeBits) - 1;

std::uint64_t Now() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::microseconds>(now).count()) % kLongMark;
}

// The same in every process, which std::hash does not promise.
std::uint64_t Hash(const std::string& text) {
  std::uint64_t hash = 14'695'981'039'346'656'037U;  // FNV-1a
  for (const char byte : text) hash = (hash ^ static_cast<unsigned char>(byte)) * 1'099'511'628'211U;
  return hash;
}

struct flock Range(short type, std::uint64_t first, std::uint64_t count) {
  struct flock range {};
  range.l_type = type;
  range.l_whence = SEEK_SET;
  range.l_start = static_cast<off_t>(first);
  range.l_len = static_cast<off_t>(count);
  return range;
}

}  // namespace

WaitingLine::WaitingLine(const std::optional<LinePlace>& place) {
  if (!place) return;
  // Shared locks need no right to write, so a folder will do.
  file_ = base::FileDescriptor(::open(place->path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  base_ = (Hash(place->camera) % kCameras) << kTimeBits;
}

void WaitingLine::Join() {
  if (place_ || !file_) return;
  const std::uint64_t last = Now();
  if (Lock(F_RDLCK, last)) place_ = last;
}

void WaitingLine::Leave() {
  if (place_) Lock(F_UNLCK, *place_);
  place_.reset();
}

bool WaitingLine::IsFirst() const {
  // A length of 0 would mean all bytes to the end.
  return !place_ || *place_ == 0 || !AnotherHas(0, *place_);
}

bool WaitingLine::IsAwaited() const {
  return AnotherHas(0, kLongMark);
}

void WaitingLine::HoldForLong(bool held) {
  if (held != long_ && Lock(held ? F_RDLCK : F_UNLCK, kLongMark)) long_ = held;
}

bool WaitingLine::IsHeldForLong() const {
  return AnotherHas(kLongMark, 1);
}

bool WaitingLine::Lock(short type, std::uint64_t offset) const {
  struct flock range = Range(type, base_ + offset, 1);
  return file_ && ::fcntl(file_.Get(), F_OFD_SETLK, &range) == 0;
}

// A question for an exclusive lock is answered with any lock that is in its way; a lock of this object is not.
bool WaitingLine::AnotherHas(std::uint64_t first, std::uint64_t count) const {
  struct flock range = Range(F_WRLCK, base_ + first, count);
  return file_ && ::fcntl(file_.Get(), F_OFD_GETLK, &range) == 0 && range.l_type != F_UNLCK;
}

}  // namespace apps

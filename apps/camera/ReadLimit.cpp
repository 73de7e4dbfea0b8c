// Ends the read of a file or a bundle without end.
#include "apps/camera/ReadLimit.h"

#include "src/wifi/CameraError.h"

namespace apps {
namespace {

// How many bytes come between two calls (Camera.h: the progress interval and the chunk size of OsxCamera).
constexpr unsigned long long kFileInterval = 262'144;
constexpr unsigned long long kBundleInterval = 65'536;

std::string MiB(unsigned long long bytes) {
  return std::to_string(bytes >> 20) + " MiB";
}

}  // namespace

ReadLimit::ReadLimit(const std::string& path, std::optional<unsigned long long> listed, Callback next,
                     Progress& progress)
    : ReadLimit(kFileInterval, next, progress) {
  most_ = listed.value_or(kMostUnlisted);
  claim_ = listed ? "the folder lists " + path + " with " + std::to_string(*listed) + " bytes"
                  : "no folder lists " + path + ", so " + MiB(most_) + " are read at most";
}

ReadLimit ReadLimit::OfBundle(const std::string& what, unsigned long long most, Callback next, Progress& progress) {
  ReadLimit limit(kBundleInterval, next, progress);
  limit.most_ = most;
  limit.claim_ = "of " + what + " " + MiB(most) + " are read at most";
  // Unlike that of a file, the first call comes behind the first chunk.
  limit.received_ = kBundleInterval;
  return limit;
}

void ReadLimit::Check(void* limit, float fraction) {
  auto& self = *static_cast<ReadLimit*>(limit);
  if (self.received_ > self.most_) {
    throw CameraError(self.claim_ + ", and it goes on after " + std::to_string(self.received_));
  }
  self.received_ += self.interval_;
  self.next_(&self.progress_, fraction);
}

}  // namespace apps

// Ends the read of a bundle without end.
#include "apps/camera/ReadLimit.h"

#include <utility>

#include "apps/commandline/Words.h"

namespace apps {
namespace {

// The chunk size of OsxCamera; the first call comes behind the first chunk.
constexpr unsigned long long kInterval = 65'536;

}  // namespace

CameraError WronglyAnnounced(std::optional<unsigned long long> listed, unsigned long long announced) {
  const std::string known =
      listed ? "the folder gives it " + Counted(*listed, "byte")
             : "no folder lists it, so " + std::to_string(kMostUnlisted >> 20) + " MiB are read at most";
  return CameraError(known + ", and the camera announces " + Counted(announced, "byte"));
}

ReadLimit::ReadLimit(std::string claim, unsigned long long most, Callback next, Progress& progress)
    : claim_(std::move(claim)), most_(most), next_(next), progress_(progress), received_(kInterval) {}

ReadLimit ReadLimit::OfBundle(const std::string& what, unsigned long long most, Callback next, Progress& progress) {
  return {"of " + what + " " + std::to_string(most >> 20) + " MiB are read at most", most, next, progress};
}

void ReadLimit::Check(void* limit, float fraction) {
  auto& self = *static_cast<ReadLimit*>(limit);
  if (self.received_ > self.most_) {
    throw CameraError(self.claim_ + ", and it goes on after " + std::to_string(self.received_));
  }
  self.received_ += kInterval;
  self.next_(&self.progress_, fraction);
}

}  // namespace apps

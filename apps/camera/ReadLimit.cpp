// Ends the read of a file without end.
#include "apps/camera/ReadLimit.h"

#include "src/wifi/CameraError.h"

namespace apps {
namespace {

// How many bytes come between two calls (Camera.h: the progress interval of OsxCamera).
constexpr unsigned long long kInterval = 262'144;

}  // namespace

void ReadLimit::Check(void* limit, float fraction) {
  auto& self = *static_cast<ReadLimit*>(limit);
  // The first call comes before the first byte.
  const unsigned long long received = self.calls_++ * kInterval;
  if (self.listed_ && received > *self.listed_) {
    throw CameraError("the folder lists " + self.path_ + " with " + std::to_string(*self.listed_) +
                      " bytes, and it goes on after " + std::to_string(received));
  }
  self.next_(&self.progress_, fraction);
}

}  // namespace apps

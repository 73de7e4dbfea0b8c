// An eventfd that wakes a sleeping run loop.

#include "darwin/cf/WakeUp.h"

#include <sys/eventfd.h>

#include <cerrno>
#include <system_error>

namespace darwin {

WakeUp::WakeUp() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!descriptor_) throw std::system_error(errno, std::generic_category(), "eventfd");
}

void WakeUp::Signal() {
  // Fails only when the counter is full, and then the descriptor is readable.
  [[maybe_unused]] const int result = ::eventfd_write(descriptor_.Get(), 1);
}

void WakeUp::Clear() {
  eventfd_t count = 0;
  // Fails only when nobody signalled.
  [[maybe_unused]] const int result = ::eventfd_read(descriptor_.Get(), &count);
}

}  // namespace darwin

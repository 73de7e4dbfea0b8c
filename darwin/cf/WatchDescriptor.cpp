// All that a run loop waits for as one descriptor of Linux.

#include "darwin/cf/WatchDescriptor.h"

#include <sys/epoll.h>
#include <sys/timerfd.h>

#include <cerrno>
#include <system_error>

namespace darwin::cf {

WatchDescriptor::WatchDescriptor()
    : epoll_(::epoll_create1(EPOLL_CLOEXEC)), timer_(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)) {
  if (!epoll_ || !timer_) throw std::system_error(errno, std::generic_category(), "epoll_create1, timerfd_create");
  Change(EPOLL_CTL_ADD, timer_.Get());
}

void WatchDescriptor::Update(const std::vector<int>& descriptors, int timeoutMs) {
  // Removed and added again: the same number may stand for another file now.
  for (const int descriptor : watched_) Change(EPOLL_CTL_DEL, descriptor);
  watched_ = descriptors;
  for (const int descriptor : watched_) Change(EPOLL_CTL_ADD, descriptor);
  itimerspec moment{};
  if (timeoutMs >= 0) {
    // A zero would disarm the timer.
    moment.it_value.tv_sec = timeoutMs / 1000;
    moment.it_value.tv_nsec = timeoutMs % 1000 * 1'000'000L + 1;
  }
  ::timerfd_settime(timer_.Get(), 0, &moment, nullptr);
}

void WatchDescriptor::Change(int operation, int descriptor) {
  epoll_event event{};
  event.events = EPOLLIN;
  event.data.fd = descriptor;
  // Closing a descriptor has already removed it.
  ::epoll_ctl(epoll_.Get(), operation, descriptor, &event);
}

}  // namespace darwin::cf

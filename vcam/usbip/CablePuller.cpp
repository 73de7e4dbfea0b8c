// Waits for the end of the program beside a session that blocks.
#include "vcam/usbip/CablePuller.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

namespace vcam::usbip {

CablePuller::CablePuller(int stop, std::function<void()> pull)
    : pull_(std::move(pull)), ended_(::eventfd(0, EFD_CLOEXEC)) {
  if (!ended_) throw std::runtime_error(std::string("Cannot make an event descriptor: ") + std::strerror(errno) + ".");
  thread_ = std::thread([this, stop] { Run(stop); });
}

CablePuller::~CablePuller() {
  ::eventfd_write(ended_.Get(), 1);
  thread_.join();
}

void CablePuller::Run(int stop) const {
  std::array<pollfd, 2> waits{pollfd{stop, POLLIN, 0}, {ended_.Get(), POLLIN, 0}};
  while (::poll(waits.data(), waits.size(), -1) < 0 && errno == EINTR) {
  }
  if (waits[0].revents != 0) pull_();
}

}  // namespace vcam::usbip

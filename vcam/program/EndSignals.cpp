// SIGTERM and SIGINT as a descriptor, so that a loop can end in order.
#include "vcam/program/EndSignals.h"

#include <signal.h>
#include <sys/signalfd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

namespace vcam::program {

base::FileDescriptor EndSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  sigaddset(&signals, SIGINT);
  ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  ::signal(SIGPIPE, SIG_IGN);
  base::FileDescriptor descriptor(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
  if (!descriptor) throw std::runtime_error(std::string("Cannot watch for signals: ") + std::strerror(errno) + ".");
  return descriptor;
}

}  // namespace vcam::program

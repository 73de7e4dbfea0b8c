// SIGTERM and SIGINT as a descriptor, so that a loop can end in order. A thread of their own takes the signals: a handler
// would interrupt calls of the other threads.
#include "vcam/program/EndSignals.h"

namespace vcam::program {

EndSignals::EndSignals() {
  sigemptyset(&signals_);
  sigaddset(&signals_, SIGTERM);
  sigaddset(&signals_, SIGINT);
  ::pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
  ::signal(SIGPIPE, SIG_IGN);
  thread_ = std::thread([this] { Wait(); });
}

EndSignals::~EndSignals() {
  over_ = true;
  ::pthread_kill(thread_.native_handle(), SIGINT);
  thread_.join();
}

void EndSignals::Wait() {
  while (!over_) {
    int signal = 0;
    if (::sigwait(&signals_, &signal) == 0 && !over_) asked_.Signal();
  }
}

}  // namespace vcam::program

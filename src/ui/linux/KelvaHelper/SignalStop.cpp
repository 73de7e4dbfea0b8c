// Ends the run loop when the session or the user asks the agent to stop.

#include "src/ui/linux/KelvaHelper/SignalStop.h"

#include <signal.h>
#include <sys/signalfd.h>

#include <cerrno>
#include <system_error>

#include "darwin/cf/RunLoopSource.h"

namespace helper {
namespace {

sigset_t StopSignals() {
  sigset_t signals;
  ::sigemptyset(&signals);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) ::sigaddset(&signals, signal);
  return signals;
}

/// Blocks the signals, so that they arrive at the descriptor and nowhere else.
int OpenSignals() {
  const sigset_t signals = StopSignals();
  ::sigprocmask(SIG_BLOCK, &signals, nullptr);
  const int descriptor = ::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
  if (descriptor < 0) throw std::system_error(errno, std::generic_category(), "signalfd");
  return descriptor;
}

void Stop(int descriptor) {
  signalfd_siginfo info;
  if (::read(descriptor, &info, sizeof info) > 0) CFRunLoopStop(CFRunLoopGetCurrent());
}

}  // namespace

SignalStop::SignalStop()
    : signals_(OpenSignals()),
      source_(darwin::cf::MakeDescriptorSource(signals_.Get(), [this] { Stop(signals_.Get()); })) {
  CFRunLoopAddSource(CFRunLoopGetCurrent(), source_, kCFRunLoopDefaultMode);
}

SignalStop::~SignalStop() {
  CFRunLoopSourceInvalidate(source_);
  CFRelease(source_);
}

}  // namespace helper

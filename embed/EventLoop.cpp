// Runs the calling thread's run loop, for programs that know nothing of run loops.

#include "embed/EventLoop.h"

#include <CoreFoundation/CoreFoundation.h>

#include <thread>

namespace kelva {

void RunEvents(std::chrono::milliseconds timeout) {
  const std::chrono::duration<double> seconds = timeout;
  if (CFRunLoopRunInMode(kCFRunLoopDefaultMode, seconds.count(), true) == kCFRunLoopRunFinished) {
    // Nobody listens on this thread: the run is over at once, and the caller's loop must not spin.
    std::this_thread::sleep_for(timeout);
  }
  DispatchEvents();
}

void DispatchEvents() {
  while (CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true) == kCFRunLoopRunHandledSource) {
  }
}

}  // namespace kelva

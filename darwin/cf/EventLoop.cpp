// One descriptor for a run loop, for programs with an event loop of their own. A Mac has none for the framework's run loop,
// so nothing there is built on it.

#include "darwin/cf/EventLoop.h"

#include <CoreFoundation/CoreFoundation.h>

#include "darwin/cf/RunLoop.h"
#include "darwin/cf/WatchDescriptor.h"

namespace darwin {

int EventDescriptor() {
  return cf::RunLoop::Current().Watch(
      []() -> std::unique_ptr<cf::LoopWatch> { return std::make_unique<cf::WatchDescriptor>(); });
}

void DispatchEvents() {
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
}

}  // namespace darwin

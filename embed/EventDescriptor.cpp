// The descriptor of this thread's run loop.

#include "darwin/cf/EventLoop.h"
#include "embed/EventLoop.h"

namespace kelva {

int EventDescriptor() {
  return darwin::EventDescriptor();
}

}  // namespace kelva

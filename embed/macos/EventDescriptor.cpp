// The run loop of macOS waits for ports, which poll(2) cannot watch.

#include "embed/EventLoop.h"

namespace kelva {

int EventDescriptor() {
  return -1;
}

}  // namespace kelva

// What sockets have in common on every system.
#include <fcntl.h>

#include "platform/Sockets.h"

namespace platform {

int SetNonBlocking(int descriptor) {
  const int flags = ::fcntl(descriptor, F_GETFL);
  return flags < 0 ? -1 : ::fcntl(descriptor, F_SETFL, flags | O_NONBLOCK);
}

}  // namespace platform

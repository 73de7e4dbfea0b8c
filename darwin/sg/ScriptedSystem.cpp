#include "ScriptedSystem.h"

#include <linux/fs.h>

namespace darwin::sg {

int ScriptedSystem::Ioctl(int, unsigned long request, void* argument) {
  switch (request) {
    case SG_IO:
      ++commands;
      return command(*static_cast<sg_io_hdr_t*>(argument));
    case SG_SET_RESERVED_SIZE:
      reserved = *static_cast<int*>(argument);
      return 0;
    case BLKSECTGET:
      if (largestTransfer == 0) return Fail(ENOTTY);
      *static_cast<int*>(argument) = largestTransfer;
      return 0;
    default:
      return Fail(EINVAL);
  }
}

}  // namespace darwin::sg

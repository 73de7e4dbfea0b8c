// A system for tests whose answers are written down beforehand.

#include "darwin/sg/testing/ScriptedSystem.h"

#include <linux/fs.h>

#include <algorithm>

#include "darwin/sg/SgCommand.h"

namespace darwin::sg {

int ScriptedSystem::Ioctl(int, unsigned long request, void* argument) {
  switch (request) {
    case SG_IO:
      ++commands;
      return Run(*static_cast<sg_io_hdr_t*>(argument));
    case SG_SET_RESERVED_SIZE:
      reserved = std::min(*static_cast<int*>(argument), reservedAtMost);
      return 0;
    case SG_GET_RESERVED_SIZE:
      *static_cast<int*>(argument) = reserved;
      return 0;
    case BLKSECTGET:
      if (largestTransfer == 0) return Fail(ENOTTY);
      *static_cast<int*>(argument) = largestTransfer;
      return 0;
    default:
      return Fail(EINVAL);
  }
}

// A command over the mapped buffer carries no address of its own: the script sees the buffer's.
int ScriptedSystem::Run(sg_io_hdr_t& header) {
  if ((header.flags & kFlagMmapIo) == 0) return command(header);
  if (mapped == unmapped || header.dxferp != nullptr || header.dxfer_len > reservedBuffer.size()) return Fail(EINVAL);
  ++mappedCommands;
  header.dxferp = reservedBuffer.data();
  return command(header);
}

void* ScriptedSystem::Map(int, std::size_t size) {
  if (!mapsReserved || size > static_cast<std::size_t>(reserved)) return nullptr;
  ++mapped;
  reservedBuffer.assign(size, 0xDD);  // what an earlier command left
  return reservedBuffer.data();
}

}  // namespace darwin::sg

// The write loop of files and firmware images.

#include "ChunkedWrite.h"

#include <algorithm>

#include "Command.h"
#include "LittleEndian.h"

namespace kelva {
namespace {

void ReportWriteProgress(const ChunkedWrite& write, int offset) {
  if (write.progress != nullptr && write.progressInterval != 0 && offset % write.progressInterval == 0) {
    write.progress(write.context, static_cast<float>(offset) / static_cast<float>(write.length));
  }
}

}  // namespace

void WriteChunks(Camera& camera, const int& chunkSize, const ChunkedWrite& write) {
  _VscCdb cdb = Block(Operation::kWriteChunk);
  for (int offset = 0; offset < write.length;) {
    ReportWriteProgress(write, offset);
    const int chunk = std::min(write.length - offset, chunkSize);
    if (chunk <= 0) return;  // a chunk size of 0 or less would loop for ever
    StoreU32(cdb.bytes + at::kWriteOffset, static_cast<std::uint32_t>(offset));
    SendBytes(camera, cdb, write.data + offset, chunk, true);
    offset += chunk;
  }
}

}  // namespace kelva

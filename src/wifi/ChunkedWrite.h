#ifndef KELVA_WIFI_CHUNKED_WRITE_H_
#define KELVA_WIFI_CHUNKED_WRITE_H_

#include "Camera.h"

namespace kelva {

/// What to write and whom to tell: `progress` is called before each chunk whose offset is a whole multiple
/// of `progressInterval`, which is read anew before each chunk.
struct ChunkedWrite {
  const char* data;
  int length;
  void (*progress)(void*, float);
  void* context;
  const int& progressInterval;
};

/// The chunked write loop: sends the data in chunks of at most `chunkSize` bytes. It ignores the result of a transfer
/// and goes on after a failed one; only an exception ends it.
void WriteChunks(Camera& camera, const int& chunkSize, const ChunkedWrite& write);

}  // namespace kelva

#endif  // KELVA_WIFI_CHUNKED_WRITE_H_

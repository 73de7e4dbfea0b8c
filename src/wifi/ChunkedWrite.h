#ifndef KELVA_WIFI_CHUNKED_WRITE_H_
#define KELVA_WIFI_CHUNKED_WRITE_H_

#include "Camera.h"

namespace kelva {

/// What is written, and who is told about it: `progress` is called before each chunk whose offset is a whole multiple
/// of `progressInterval`, which is read anew before each chunk.
struct ChunkedWrite {
  const char* data;
  int length;
  void (*progress)(void*, float);
  void* context;
  const int& progressInterval;
};

/// The chunked write loop: sends the data in chunks of at most `chunkSize` bytes. The outcome of a transfer is not
/// looked at, and the loop does not stop on a failed one; what a transfer throws passes through.
void WriteChunks(Camera& camera, const int& chunkSize, const ChunkedWrite& write);

}  // namespace kelva

#endif  // KELVA_WIFI_CHUNKED_WRITE_H_

#ifndef KELVA_WIFI_CHUNKED_WRITE_H_
#define KELVA_WIFI_CHUNKED_WRITE_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Camera.h"
#include "FileWriter.h"

namespace kelva {

/// Gives the chunks of a write, in order, as they are needed.
class ChunkSource {
 public:
  virtual ~ChunkSource() = default;
  /// The next `size` bytes, valid until the next call.
  virtual const char* Next(std::size_t size) = 0;
};

/// What lies in memory.
class MemorySource final : public ChunkSource {
 public:
  explicit MemorySource(const char* data) : next_(data) {}
  const char* Next(std::size_t size) override;

 private:
  const char* next_;
};

/// What a function fills in, chunk after chunk into one buffer.
class FilledSource final : public ChunkSource {
 public:
  /// `fill` outlives the source.
  explicit FilledSource(const ByteSource& fill) : fill_(fill) {}
  const char* Next(std::size_t size) override;

 private:
  const ByteSource& fill_;
  std::vector<char> buffer_;
};

/// How much to write and whom to tell: `progress` is called before each chunk whose offset is a whole multiple
/// of `progressInterval`, which is read anew before each chunk. Nothing is written when the length is not positive.
struct ChunkedWrite {
  std::int64_t length;  ///< at most 2^32 - 1
  void (*progress)(void*, float);
  void* context;
  const int& progressInterval;
};

/// The chunked write loop: sends the data in chunks of at most `chunkSize` bytes. It ignores the result of a transfer
/// and goes on after a failed one; only an exception ends it.
void WriteChunks(Camera& camera, const int& chunkSize, const ChunkedWrite& write, ChunkSource& source);

/// A whole write of a file: opens it, sends the chunks, closes it.
void SendFile(Camera& camera, const char* path, const int& chunkSize, const ChunkedWrite& write, ChunkSource& source);

/// A whole upgrade: announces `announced` bytes, sends the chunks, ends it.
void SendImage(Camera& camera, std::uint32_t announced, const int& chunkSize, const ChunkedWrite& write,
               ChunkSource& source);

}  // namespace kelva

#endif  // KELVA_WIFI_CHUNKED_WRITE_H_

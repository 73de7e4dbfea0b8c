// The write loop of files and firmware images.

#include "ChunkedWrite.h"

#include <algorithm>

#include "Command.h"
#include "LittleEndian.h"

namespace kelva {
namespace {

void ReportWriteProgress(const ChunkedWrite& write, std::int64_t offset) {
  if (write.progress != nullptr && write.progressInterval != 0 && offset % write.progressInterval == 0) {
    write.progress(write.context, static_cast<float>(offset) / static_cast<float>(write.length));
  }
}

}  // namespace

const char* MemorySource::Next(std::size_t size) {
  const char* const chunk = next_;
  next_ += size;
  return chunk;
}

const char* FilledSource::Next(std::size_t size) {
  if (buffer_.size() < size) buffer_.resize(size);
  fill_(std::span(buffer_).first(size));
  return buffer_.data();
}

void WriteChunks(Camera& camera, const int& chunkSize, const ChunkedWrite& write, ChunkSource& source) {
  _VscCdb cdb = Block(Operation::kWriteChunk);
  for (std::int64_t offset = 0; offset < write.length;) {
    ReportWriteProgress(write, offset);
    const auto chunk = static_cast<int>(std::min<std::int64_t>(write.length - offset, chunkSize));
    if (chunk <= 0) return;  // a chunk size of 0 or less would loop for ever
    StoreU32(cdb.bytes + at::kWriteOffset, static_cast<std::uint32_t>(offset));
    SendBytes(camera, cdb, source.Next(static_cast<std::size_t>(chunk)), chunk, true);
    offset += chunk;
  }
}

void SendFile(Camera& camera, const char* path, const int& chunkSize, const ChunkedWrite& write, ChunkSource& source) {
  camera.ClearCancel(true);
  _VscCdb open = Block(Operation::kSelect, select::kFile);
  open.bytes[at::kParameter] = kSelectForWriting;
  SendText(camera, open, path, true);
  WriteChunks(camera, chunkSize, write, source);
  SendCommand(camera, Block(Operation::kEndWrite, kEndWriteFile), true);
}

void SendImage(Camera& camera, std::uint32_t announced, const int& chunkSize, const ChunkedWrite& write,
               ChunkSource& source) {
  camera.ClearCancel(true);
  _VscCdb begin = Block(Operation::kBeginUpgrade);
  StoreU32(begin.bytes + at::kUpgradeLength, announced);
  SendCommand(camera, begin, true);
  WriteChunks(camera, chunkSize, write, source);
  SendCommand(camera, Block(Operation::kAction, action::kEndUpgrade), true);
}

}  // namespace kelva

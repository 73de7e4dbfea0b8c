// Files of the camera's storage, by path.

#include "Camera.h"
#include "Checks.h"
#include "ChunkedRead.h"
#include "ChunkedWrite.h"
#include "Command.h"

using kelva::Block;
using kelva::Operation;

std::vector<char> Camera::ReadFile(const char* path, void (*progress)(void*, float), void* context, bool flag) {
  if (!IsOpen()) return {};
  ClearCancel(flag);
  std::uint32_t fileSize = 0;
  if (!kelva::SendText(*this, Block(Operation::kSelect, kelva::select::kFile), path, flag) ||
      !kelva::AskSelectedSize(*this, flag, fileSize) || fileSize == 0) {
    return {};
  }
  kelva::VectorSink sink(fileSize);
  const auto report = kelva::ReadProgress::AtIntervals(progress, context, &progressInterval_, fileSize);
  if (!kelva::ReadChunks(*this, chunkSize_, {kelva::read_chunk::kSelected, flag, report}, sink)) return {};
  if (!kelva::ReconcileSize(sink.Received(), fileSize, __func__)) return {};
  return sink.Take();
}

void Camera::WriteFile(const char* path, const char* data, int length, void (*progress)(void*, float), void* context) {
  kelva::MemorySource source(data);
  kelva::SendFile(*this, path, chunkSize_, {length, progress, context, progressInterval_}, source);
}

bool Camera::DeleteFile(const char* path) {
  ClearCancel(true);
  return kelva::SendText(*this, Block(Operation::kAction, kelva::action::kDeleteFile), path, true);
}

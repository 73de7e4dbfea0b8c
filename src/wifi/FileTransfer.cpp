// Files of the camera's storage, by path.

#include "Camera.h"
#include "ChunkedRead.h"
#include "ChunkedWrite.h"
#include "Command.h"
#include "SizeReconciliation.h"

using vsc::Block;
using vsc::Operation;

std::vector<char> Camera::ReadFile(const char* path, void (*progress)(void*, float), void* context, bool flag) {
  if (!IsOpen()) {
    return {};
  }
  ClearCancel(flag);
  std::uint32_t fileSize = 0;
  if (!vsc::SendText(*this, Block(Operation::kSelect, vsc::select::kFile), path, flag) ||
      !vsc::AskSelectedSize(*this, flag, fileSize) || fileSize == 0) {
    return {};
  }
  vsc::VectorSink sink(fileSize);
  const auto report = vsc::ReadProgress::AtIntervals(progress, context, progressInterval_, fileSize);
  if (!vsc::ReadChunks(*this, chunkSize_, {vsc::read_chunk::kSelected, flag, report}, sink)) {
    return {};
  }
  if (!vsc::ReconcileSize(sink.Received(), fileSize, __func__)) {
    return {};
  }
  return sink.Take();
}

void Camera::WriteFile(const char* path, const char* data, int length, void (*progress)(void*, float), void* context) {
  ClearCancel(true);
  _VscCdb open = Block(Operation::kSelect, vsc::select::kFile);
  open.bytes[vsc::at::kParameter] = vsc::kSelectForWriting;
  vsc::SendText(*this, open, path, true);
  vsc::WriteChunks(*this, chunkSize_, {data, length, progress, context, progressInterval_});
  vsc::SendCommand(*this, Block(Operation::kEndWrite, vsc::kEndWriteFile), true);
}

bool Camera::DeleteFile(const char* path) {
  ClearCancel(true);
  return vsc::SendText(*this, Block(Operation::kAction, vsc::action::kDeleteFile), path, true);
}

// Commands that move more than a status word: the information record, the console log, the firmware upgrade.

#include <algorithm>
#include <cstring>

#include "Camera.h"
#include "Checks.h"
#include "ChunkedWrite.h"
#include "Command.h"
#include "FatalAssertion.h"
#include "LittleEndian.h"

using kelva::Block;
using kelva::Operation;

namespace {

constexpr int kConsoleHeader = 8;
constexpr std::int32_t kConsoleVersion = 1;

/// Sets `more`, so that a caller who polls until the log is empty asks again after an error.
std::string FailConsoleLog(const char* message, bool& more) {
  kelva::ReportProtocolError(message);
  more = true;
  return {};
}

}  // namespace

bool Camera::CameraInformation(_VscCdbCameraInformation& info) {
  ClearCancel(true);
  info = {};
  info.last = -1;
  std::uint32_t announced = 0;
  if (!kelva::SendCommand(*this, Block(Operation::kSelect, kelva::select::kInformation), true) ||
      !kelva::AskSelectedSize(*this, true, announced)) {
    return false;
  }
  int size = sizeof(info);
  std::vector<char> buffer(static_cast<std::size_t>(std::max(chunkSize_, size)));
  if (!Transfer(Block(Operation::kReadChunk, kelva::read_chunk::kSelected), kelva::kFromCamera, size, buffer.data(),
                true)) {
    return false;
  }
  const auto fileSize = static_cast<std::int32_t>(announced);
  if (size > fileSize && (size - 1) != fileSize) kelva::FailAssertion("(size - 1) == fileSize", __func__);
  std::memcpy(&info, buffer.data(), sizeof(info));
  return true;
}

std::string Camera::ConsoleLog(bool& more) {
  int size = chunkSize_;  // read once: the request must not exceed the buffer, whatever ClearCancel does
  std::vector<char> buffer(static_cast<std::size_t>(std::max(size, kConsoleHeader)));
  ClearCancel(true);
  Transfer(Block(Operation::kQuery, kelva::query::kConsoleLog), kelva::kFromCamera, size, buffer.data(), true);
  // The version is checked before the size, also when no version arrived.
  if (kelva::LoadI32(buffer.data()) != kConsoleVersion) return FailConsoleLog("ConsoleLog() version incorrect.", more);
  if (size < kConsoleHeader) return FailConsoleLog("ConsoleLog() return size incorrect.", more);
  more = kelva::LoadU32(buffer.data() + 4) != 0;
  return {buffer.data() + kConsoleHeader, buffer.data() + kelva::BytesArrived(size, buffer.size())};
}

void Camera::Upgrade(const char* image, int length, void (*progress)(void*, float), void* context) {
  kelva::MemorySource source(image);
  kelva::SendImage(*this, static_cast<std::uint32_t>(length), chunkSize_,
                   {length, progress, context, progressInterval_}, source);
}

void Camera::UpgradeStatus(float& progress, bool& first, bool& second) {
  char answer[12] = {};
  ClearCancel(true);
  int size = sizeof(answer);
  // Transfer's result is ignored, as in IsReady: only the size counts.
  Transfer(Block(Operation::kQuery, kelva::query::kUpgradeStatus), kelva::kFromCamera, size, answer, true);
  if (size != sizeof(answer)) {
    kelva::ReportProtocolError("UpgradeStatus() response size incorrect.");
    const std::size_t arrived = kelva::BytesArrived(size, sizeof(answer));
    std::memset(answer + arrived, 0, sizeof(answer) - arrived);
  }
  progress = kelva::LoadFloat(answer);
  first = kelva::LoadU32(answer + 4) != 0;
  second = kelva::LoadU32(answer + 8) != 0;
}

// Commands that move more than a status word: the information record, the console log, the firmware upgrade.

#include <algorithm>
#include <cstring>

#include "Camera.h"
#include "ChunkedWrite.h"
#include "Command.h"
#include "ErrorPolicy.h"
#include "FatalAssertion.h"
#include "LittleEndian.h"

using vsc::Block;
using vsc::Operation;

namespace {

constexpr int kConsoleHeader = 8;
constexpr std::int32_t kConsoleVersion = 1;

/// A caller that polls until there is no more keeps asking after an error.
std::string FailConsoleLog(const char* message, bool& more) {
  vsc::ReportProtocolError(message);
  more = true;
  return {};
}

}  // namespace

bool Camera::CameraInformation(_VscCdbCameraInformation& info) {
  ClearCancel(true);
  info = {};
  info.last = -1;
  std::uint32_t announced = 0;
  if (!vsc::SendCommand(*this, Block(Operation::kSelect, vsc::select::kInformation), true) ||
      !vsc::AskSelectedSize(*this, true, announced)) {
    return false;
  }
  int size = sizeof(info);
  std::vector<char> buffer(static_cast<std::size_t>(std::max(chunkSize_, size)));
  if (!Transfer(Block(Operation::kReadChunk, vsc::read_chunk::kSelected), vsc::kFromCamera, size, buffer.data(),
                true)) {
    return false;
  }
  const auto fileSize = static_cast<std::int32_t>(announced);
  if (size > fileSize && (size - 1) != fileSize) {
    vsc::FailAssertion("(size - 1) == fileSize", __func__);
  }
  std::memcpy(&info, buffer.data(), sizeof(info));
  return true;
}

std::string Camera::ConsoleLog(bool& more) {
  std::vector<char> buffer(static_cast<std::size_t>(std::max(chunkSize_, kConsoleHeader)));
  ClearCancel(true);
  int size = chunkSize_;
  Transfer(Block(Operation::kQuery, vsc::query::kConsoleLog), vsc::kFromCamera, size, buffer.data(), true);
  // The version is looked at first, even before the size.
  if (vsc::LoadI32(buffer.data()) != kConsoleVersion) {
    return FailConsoleLog("ConsoleLog() version incorrect.", more);
  }
  if (size < kConsoleHeader) {
    return FailConsoleLog("ConsoleLog() return size incorrect.", more);
  }
  more = vsc::LoadU32(buffer.data() + 4) != 0;
  return {buffer.data() + kConsoleHeader, buffer.data() + vsc::BytesArrived(size, buffer.size())};
}

void Camera::Upgrade(const char* image, int length, void (*progress)(void*, float), void* context) {
  ClearCancel(true);
  _VscCdb begin = Block(Operation::kBeginUpgrade);
  vsc::StoreU32(begin.bytes + vsc::at::kUpgradeLength, static_cast<std::uint32_t>(length));
  vsc::SendCommand(*this, begin, true);
  vsc::WriteChunks(*this, chunkSize_, {image, length, progress, context, progressInterval_});
  vsc::SendCommand(*this, Block(Operation::kAction, vsc::action::kEndUpgrade), true);
}

void Camera::UpgradeStatus(float& progress, bool& first, bool& second) {
  char answer[12] = {};
  ClearCancel(true);
  int size = sizeof(answer);
  // Only the size counts here, as in IsReady.
  Transfer(Block(Operation::kQuery, vsc::query::kUpgradeStatus), vsc::kFromCamera, size, answer, true);
  if (size != sizeof(answer)) {
    vsc::ReportProtocolError("UpgradeStatus() response size incorrect.");
    const std::size_t arrived = vsc::BytesArrived(size, sizeof(answer));
    std::memset(answer + arrived, 0, sizeof(answer) - arrived);
  }
  progress = vsc::LoadFloat(answer);
  first = vsc::LoadU32(answer + 4) != 0;
  second = vsc::LoadU32(answer + 8) != 0;
}

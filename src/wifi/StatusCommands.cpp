// The short commands that query or change the camera's state. They differ on purpose in whether they ask IsOpen first,
// whether they check the answer's size, and what they return when something is wrong.

#include <bit>
#include <cstring>

#include "Camera.h"
#include "Command.h"
#include "ErrorPolicy.h"
#include "LittleEndian.h"

using vsc::Block;
using vsc::Operation;

namespace {

bool SendMonitorText(Camera& camera, std::uint8_t subCode, const char* text) {
  if (!camera.IsOpen()) {
    return false;
  }
  camera.ClearCancel(true);
  try {
    return vsc::SendText(camera, Block(Operation::kAction, subCode), text, true);
  } catch (const CameraError&) {
    return false;
  }
}

/// Reads a 4-byte answer and applies the response-size rule; 0 is the neutral value.
std::uint32_t ReadWord(Camera& camera, std::uint8_t subCode, const char* message) {
  camera.ClearCancel(true);
  char answer[4] = {};
  if (vsc::ReadAnswer(camera, Block(Operation::kQuery, subCode), answer, sizeof(answer), true) != sizeof(answer)) {
    vsc::ReportProtocolError(message);
    return 0;
  }
  return vsc::LoadU32(answer);
}

bool SendAction(Camera& camera, std::uint8_t subCode, bool flag) {
  camera.ClearCancel(flag);
  return vsc::SendCommand(camera, Block(Operation::kAction, subCode), flag);
}

}  // namespace

bool Camera::IsReady() {
  if (!IsOpen()) {
    return false;
  }
  ClearCancel(true);
  char answer[4] = {};
  int size = sizeof(answer);
  // Only the size counts here: a transport that returns false but moved 4 bytes has answered.
  Transfer(Block(Operation::kQuery, vsc::query::kReady), vsc::kFromCamera, size, answer, true);
  if (size != sizeof(answer)) {
    vsc::ReportProtocolError("IsReady() response size incorrect.");
    return false;
  }
  return vsc::LoadU32(answer) != 0;
}

bool Camera::MonitorCmd(const char* line) {
  return SendMonitorText(*this, vsc::action::kMonitorLine, line);
}

bool Camera::MonitorCmdSingleChar(const char* text) {
  return SendMonitorText(*this, vsc::action::kMonitorSingleChar, text);
}

bool Camera::MonitorKnockCmd() {
  return false;
}

void Camera::Reboot() {
  SendAction(*this, vsc::action::kReboot, true);
}

_VscCdbTime Camera::GetTime() {
  ClearCancel(true);
  _VscCdbTime time{};
  const int expected = sizeof(time.bytes);
  if (vsc::ReadAnswer(*this, Block(Operation::kQuery, vsc::query::kTime), time.bytes, expected, true) == expected) {
    return time;
  }
  vsc::ReportProtocolError();
  // Bytes 2 and 3 keep whatever the short answer left in them.
  std::memset(time.bytes, 0, 2);
  std::memset(time.bytes + 4, 0, sizeof(time.bytes) - 4);
  return time;
}

void Camera::SetTime(const _VscCdbTime& time) {
  ClearCancel(true);
  vsc::SendBytes(*this, Block(Operation::kAction, vsc::action::kSetTime), reinterpret_cast<const char*>(time.bytes),
                 sizeof(time.bytes), true);
}

int Camera::GetDoneCmdCount() {
  return static_cast<int>(ReadWord(*this, vsc::query::kDoneCommands, "GetDoneCmdCount() response size incorrect"));
}

float Camera::BatteryLevel() {
  return std::bit_cast<float>(ReadWord(*this, vsc::query::kBattery, "BatteryLevel() response size incorrect"));
}

bool Camera::CaptureImage(bool flag) {
  return SendAction(*this, vsc::action::kCaptureImage, flag);
}

bool Camera::DisableWifi(bool flag) {
  return SendAction(*this, vsc::action::kDisableWifi, flag);
}

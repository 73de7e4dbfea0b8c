// The short commands that query or change the camera's state. They look alike but differ in three ways that callers
// rely on: whether they ask IsOpen first, whether they check the answer's size, and what they return after an error.

#include <bit>
#include <cstring>

#include "Camera.h"
#include "Checks.h"
#include "Command.h"
#include "LittleEndian.h"

using kelva::Block;
using kelva::Operation;

namespace {

bool SendMonitorText(Camera& camera, std::uint8_t subCode, const char* text) {
  if (!camera.IsOpen()) return false;
  camera.ClearCancel(true);
  try {
    return kelva::SendText(camera, Block(Operation::kAction, subCode), text, true);
  } catch (const CameraError&) {
    return false;
  }
}

/// Reads a 4-byte answer and applies the response-size rule; 0 is the neutral value.
std::uint32_t ReadWord(Camera& camera, std::uint8_t subCode, const char* message) {
  camera.ClearCancel(true);
  char answer[4] = {};
  if (kelva::ReadAnswer(camera, Block(Operation::kQuery, subCode), answer, sizeof(answer), true) != sizeof(answer)) {
    kelva::ReportProtocolError(message);
    return 0;
  }
  return kelva::LoadU32(answer);
}

bool SendAction(Camera& camera, std::uint8_t subCode, bool flag) {
  camera.ClearCancel(flag);
  return kelva::SendCommand(camera, Block(Operation::kAction, subCode), flag);
}

}  // namespace

bool Camera::IsReady() {
  if (!IsOpen()) return false;
  ClearCancel(true);
  char answer[4] = {};
  int size = sizeof(answer);
  // Transfer's result is ignored: a transport that returned false but moved 4 bytes has answered.
  Transfer(Block(Operation::kQuery, kelva::query::kReady), kelva::kFromCamera, size, answer, true);
  if (size != sizeof(answer)) {
    kelva::ReportProtocolError("IsReady() response size incorrect.");
    return false;
  }
  return kelva::LoadU32(answer) != 0;
}

bool Camera::MonitorCmd(const char* line) {
  return SendMonitorText(*this, kelva::action::kMonitorLine, line);
}

bool Camera::MonitorCmdSingleChar(const char* text) {
  return SendMonitorText(*this, kelva::action::kMonitorSingleChar, text);
}

bool Camera::MonitorKnockCmd() {
  return false;
}

void Camera::Reboot() {
  SendAction(*this, kelva::action::kReboot, true);
}

_VscCdbTime Camera::GetTime() {
  ClearCancel(true);
  _VscCdbTime time{};
  const int expected = sizeof(time.bytes);
  if (kelva::ReadAnswer(*this, Block(Operation::kQuery, kelva::query::kTime), time.bytes, expected, true) == expected) {
    return time;
  }
  kelva::ReportProtocolError();
  // Bytes 2 and 3 are not reset: they keep what the short answer left in them.
  std::memset(time.bytes, 0, 2);
  std::memset(time.bytes + 4, 0, sizeof(time.bytes) - 4);
  return time;
}

void Camera::SetTime(const _VscCdbTime& time) {
  ClearCancel(true);
  kelva::SendBytes(*this, Block(Operation::kAction, kelva::action::kSetTime), reinterpret_cast<const char*>(time.bytes),
                   sizeof(time.bytes), true);
}

int Camera::GetDoneCmdCount() {
  return static_cast<int>(ReadWord(*this, kelva::query::kDoneCommands, "GetDoneCmdCount() response size incorrect"));
}

float Camera::BatteryLevel() {
  return std::bit_cast<float>(ReadWord(*this, kelva::query::kBattery, "BatteryLevel() response size incorrect"));
}

bool Camera::CaptureImage(bool flag) {
  return SendAction(*this, kelva::action::kCaptureImage, flag);
}

bool Camera::DisableWifi(bool flag) {
  return SendAction(*this, kelva::action::kDisableWifi, flag);
}

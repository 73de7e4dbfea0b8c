// The manual exposure controls.

#include <algorithm>
#include <cstring>
#include <limits>

#include "Camera.h"
#include "Checks.h"
#include "Command.h"
#include "LittleEndian.h"

using kelva::Block;
using kelva::Operation;

namespace {

constexpr int kAskedSize = 40;
constexpr int kWireSize = 32;

/// Decodes the wire form, which has no gaps between its fields (the struct has).
_ManualControlsState Decode(const char (&wire)[kWireSize]) {
  _ManualControlsState state{};
  state.first = kelva::LoadI32(wire);
  state.second = kelva::LoadI32(wire + 4);
  state.third = kelva::LoadFloat(wire + 8);
  state.fourth = kelva::LoadDouble(wire + 12);
  state.fifth = kelva::LoadDouble(wire + 20);
  state.sixth = kelva::LoadI32(wire + 28);
  return state;
}

}  // namespace

bool Camera::GetManualControlsState(_ManualControlsState& state) {
  if (!IsOpen()) return false;
  ClearCancel(true);
  std::vector<char> buffer(static_cast<std::size_t>(std::max(chunkSize_, kAskedSize)));
  int size = kAskedSize;
  if (!Transfer(Block(Operation::kQuery, kelva::query::kManualControls), kelva::kFromCamera, size, buffer.data(),
                true)) {
    return false;
  }
  char wire[kWireSize] = {};
  std::memcpy(wire, buffer.data(), kelva::BytesArrived(size, kWireSize));
  state = Decode(wire);
  if (size >= kWireSize) return true;
  kelva::ReportProtocolError("GetManualControlsState() unexpected response length");
  return false;
}

bool Camera::SetManualControl(int control, std::string value) {
  if (!IsOpen() || value.size() >= static_cast<std::size_t>(std::numeric_limits<int>::max())) return false;
  ClearCancel(true);
  _VscCdb cdb = Block(Operation::kAction, kelva::action::kManualControl);
  cdb.bytes[kelva::at::kParameter] = static_cast<unsigned char>(control);
  // A size and a buffer, but no data phase: the camera sees the command, and the value does not leave the host.
  int size = static_cast<int>(value.size()) + 1;
  return Transfer(cdb, kelva::kNoData, size, value.data(), true);
}

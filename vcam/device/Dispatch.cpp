#include "vcam/device/Handlers.h"
#include "vcam/device/Register.h"
#include "vcam/device/Replies.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

bool AllowedWhileBusy(const Command& command) {
  return command.cdb[0] == kOpQuery && command.cdb[2] != kQuerySize;
}

Reply DispatchReady(Device& device, const Command& command) {
  switch (command.cdb[0]) {
    case kOpAction:
      return HandleAction(device, command);
    case kOpUpgradeStart:
      return HandleUpgradeStart(device, command);
    case kOpSelect:
      return HandleSelect(device, command);
    case kOpWriteEnd:
      return HandleWriteEnd(device, command);
    case kOpReadChunk:
      return HandleReadChunk(device, command);
    case kOpWriteChunk:
      return HandleWriteChunk(device, command);
    case kOpQuery:
      return HandleQuery(device, command);
    default:
      return Refuse(sense::kUnknownOperation);
  }
}

}  // namespace

Reply Dispatch(Device& device, const Command& command) {
  if (command.cdb[0] < kOpAction || command.cdb[0] > kOpQuery) return Refuse(sense::kUnknownOperation);
  if (command.cdb[1] != 0) return Refuse(sense::kBadCommandField);
  if (command.direction != Direction::kNone && command.length > kMaxTransferLength)
    return Refuse(sense::kBadCommandField);
  if (!device.Ready() && !AllowedWhileBusy(command))
    return Refuse(device.upgrade.Writing(device.options.now()) ? sense::kMicrocodeDownload : sense::kBecomingReady);
  return DispatchReady(device, command);
}

}  // namespace vcam

#include "vcam/device/Handlers.h"
#include "vcam/device/Replies.h"
#include "vcam/device/SenseCodes.h"
#include "wifi/VscRegister.h"

namespace vcam {
namespace {

bool AllowedWhileBusy(const Command& command) {
  return Is(command, vsc::Operation::kQuery) && command.cdb[vsc::at::kSubCode] != vsc::query::kSelectedSize;
}

bool IsVendorCommand(const Command& command) {
  return command.cdb[0] >= static_cast<std::uint8_t>(vsc::Operation::kAction) &&
         command.cdb[0] <= static_cast<std::uint8_t>(vsc::Operation::kQuery);
}

Reply DispatchReady(Device& device, const Command& command) {
  switch (static_cast<vsc::Operation>(command.cdb[0])) {
    case vsc::Operation::kAction:
      return HandleAction(device, command);
    case vsc::Operation::kBeginUpgrade:
      return HandleUpgradeStart(device, command);
    case vsc::Operation::kSelect:
      return HandleSelect(device, command);
    case vsc::Operation::kEndWrite:
      return HandleWriteEnd(device, command);
    case vsc::Operation::kReadChunk:
      return HandleReadChunk(device, command);
    case vsc::Operation::kWriteChunk:
      return HandleWriteChunk(device, command);
    case vsc::Operation::kQuery:
      return HandleQuery(device, command);
    default:
      return Refuse(sense::kUnknownOperation);
  }
}

}  // namespace

Reply Dispatch(Device& device, const Command& command) {
  if (!IsVendorCommand(command)) return Refuse(sense::kUnknownOperation);
  if (command.cdb[1] != 0) return Refuse(sense::kBadCommandField);
  if (command.direction != Direction::kNone && command.length > kMaxTransferLength)
    return Refuse(sense::kBadCommandField);
  if (!device.Ready() && !AllowedWhileBusy(command))
    return Refuse(device.upgrade.Writing(device.options.now()) ? sense::kMicrocodeDownload : sense::kBecomingReady);
  return DispatchReady(device, command);
}

}  // namespace vcam

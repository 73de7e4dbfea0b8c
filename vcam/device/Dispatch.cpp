// Checks what every command has in common and calls the handler of its operation.
#include "src/wifi/VscRegister.h"
#include "vcam/device/Handlers.h"
#include "vcam/device/Replies.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

bool AllowedWhileBusy(const wire::Command& command) {
  return Is(command, kelva::Operation::kQuery) && command.cdb[kelva::at::kSubCode] != kelva::query::kSelectedSize;
}

bool IsVendorCommand(const wire::Command& command) {
  return command.cdb[0] >= static_cast<std::uint8_t>(kelva::Operation::kAction) &&
         command.cdb[0] <= static_cast<std::uint8_t>(kelva::Operation::kQuery);
}

wire::Reply DispatchReady(Device& device, const wire::Command& command) {
  switch (static_cast<kelva::Operation>(command.cdb[0])) {
    case kelva::Operation::kAction:
      return HandleAction(device, command);
    case kelva::Operation::kBeginUpgrade:
      return HandleUpgradeStart(device, command);
    case kelva::Operation::kSelect:
      return HandleSelect(device, command);
    case kelva::Operation::kEndWrite:
      return HandleWriteEnd(device, command);
    case kelva::Operation::kReadChunk:
      return HandleReadChunk(device, command);
    case kelva::Operation::kWriteChunk:
      return HandleWriteChunk(device, command);
    case kelva::Operation::kQuery:
      return HandleQuery(device, command);
    default:
      return Refuse(sense::kUnknownOperation);
  }
}

}  // namespace

wire::Reply Dispatch(Device& device, const wire::Command& command) {
  if (!IsVendorCommand(command)) return Refuse(sense::kUnknownOperation);
  if (command.cdb[1] != 0) return Refuse(sense::kBadCommandField);
  if (command.direction != wire::Direction::kNone && command.length > wire::kMaxTransferLength) {
    return Refuse(sense::kBadCommandField);
  }
  if (!device.Ready() && !AllowedWhileBusy(command)) {
    return Refuse(device.upgrade.Writing(device.options.now()) ? sense::kMicrocodeDownload : sense::kBecomingReady);
  }
  return DispatchReady(device, command);
}

}  // namespace vcam

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

constexpr std::uint8_t Code(kelva::Operation operation) {
  return static_cast<std::uint8_t>(operation);
}

constexpr Route kOperations[] = {
    {Code(kelva::Operation::kAction), HandleAction},
    {Code(kelva::Operation::kBeginUpgrade), WithoutData<HandleUpgradeStart>},
    {Code(kelva::Operation::kSelect), HandleSelect},
    {Code(kelva::Operation::kEndWrite), WithoutData<HandleWriteEnd>},
    {Code(kelva::Operation::kReadChunk), HandleReadChunk},
    {Code(kelva::Operation::kWriteChunk), HandleWriteChunk},
    {Code(kelva::Operation::kQuery), HandleQuery},
};

}  // namespace

wire::Reply Dispatch(Device& device, const wire::Command& command) {
  if (command.cdb[0] < Code(kelva::Operation::kAction) || command.cdb[0] > Code(kelva::Operation::kQuery)) {
    return Refuse(sense::kUnknownOperation);
  }
  if (command.cdb[1] != 0) return Refuse(sense::kBadCommandField);
  if (command.direction != wire::Direction::kNone && command.length > wire::kMaxTransferLength) {
    return Refuse(sense::kBadCommandField);
  }
  if (!device.Ready() && !AllowedWhileBusy(command)) {
    return Refuse(device.upgrade.Writing(device.options.now()) ? sense::kMicrocodeDownload : sense::kBecomingReady);
  }
  return Follow(kOperations, command.cdb[0], device, command);
}

}  // namespace vcam

#include <algorithm>
#include <bit>

#include "vcam/device/Handlers.h"
#include "vcam/device/Replies.h"
#include "vcam/device/SenseCodes.h"
#include "wifi/VscRegister.h"

namespace vcam {
namespace {

constexpr std::size_t kConsoleHeader = 8;
constexpr std::uint32_t kConsoleVersion = 1;

template <typename Number>
Bytes BytesOf(Number value) {
  Bytes bytes;
  Append(bytes, value);
  return bytes;
}

Reply Size(Device& device, const Command& command) {
  if (!device.selected) return Refuse(sense::kWrongSequence);
  return Answer(command, BytesOf(static_cast<std::uint32_t>(device.selected->data.size())));
}

Reply ConsolePiece(Device& device, const Command& command) {
  if (!MayAnswer(command)) return Refuse(sense::kBadCommandField);
  const std::size_t room = command.direction == Direction::kFromCamera ? command.length : 0;
  const std::string text = device.console.Take(room > kConsoleHeader ? room - kConsoleHeader : 0);
  Bytes bytes;
  Append(bytes, kConsoleVersion);
  Append(bytes, static_cast<std::uint32_t>(!device.console.Empty()));
  AppendText(bytes, text);
  return Answer(command, std::move(bytes));
}

/// The camera's own meaning of the six fields stands in vcam/README.md.
Reply ManualControls(Device& device, const Command& command) {
  Bytes bytes;
  Append(bytes, device.settings.lastManualControl);
  Append(bytes, device.settings.manualControlCommands);
  Append(bytes, 0.0F);
  Append(bytes, 0.008);
  Append(bytes, 2.8);
  Append(bytes, std::int32_t{100});
  return Answer(command, std::move(bytes));
}

}  // namespace

Reply HandleQuery(Device& device, const Command& command) {
  switch (command.cdb[vsc::at::kSubCode]) {
    case vsc::query::kSelectedSize:
      return Size(device, command);
    case vsc::query::kUpgradeStatus:
      return Answer(command, device.upgrade.Status(device.options.now()));
    case vsc::query::kConsoleLog:
      return ConsolePiece(device, command);
    case vsc::query::kTime:
      return Answer(command, device.clock.Read());
    case vsc::query::kReady:
      return Answer(command, BytesOf(static_cast<std::uint32_t>(device.Ready())));
    case vsc::query::kDoneCommands:
      return Answer(command, BytesOf(device.doneCount));
    case vsc::query::kBattery:
      return Answer(command, BytesOf(device.battery));
    case vsc::query::kManualControls:
      return ManualControls(device, command);
    default:
      return Refuse(sense::kBadCommandField);
  }
}

}  // namespace vcam

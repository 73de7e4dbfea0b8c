// Operation 0xC6, by sub-code: the questions that the camera answers without a selection.
#include <algorithm>
#include <bit>

#include "src/wifi/VscRegister.h"
#include "vcam/device/Handlers.h"
#include "vcam/device/Opaque.h"
#include "vcam/device/Replies.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

constexpr std::size_t kConsoleHeader = 8;
constexpr std::uint32_t kConsoleVersion = 1;

template <typename... Numbers>
wire::Reply AnswerNumbers(const wire::Command& command, Numbers... values) {
  base::Bytes bytes;
  base::Append(bytes, values...);
  return Answer(command, std::move(bytes));
}

wire::Reply Size(Device& device, const wire::Command& command) {
  if (!device.selected) return Refuse(sense::kWrongSequence);
  return AnswerNumbers(command, static_cast<std::uint32_t>(device.selected->data.Size()));
}

wire::Reply Time(const Device& device, const wire::Command& command) {
  base::Bytes bytes = device.clock.Read();
  MakeOpaque(device.options.opaque, "clock", bytes);
  return Answer(command, device.givenTime.empty() ? bytes : device.givenTime);
}

wire::Reply Battery(const Device& device, const wire::Command& command) {
  base::Bytes bytes;
  base::Append(bytes, device.battery);
  MakeOpaque(device.options.opaque, "battery", bytes);
  return Answer(command, std::move(bytes));
}

wire::Reply ConsolePiece(Device& device, const wire::Command& command) {
  if (!MayAnswer(command)) return Refuse(sense::kBadCommandField);
  const std::size_t room = command.direction == wire::Direction::kFromCamera ? command.length : 0;
  const std::string text = device.console.Take(room > kConsoleHeader ? room - kConsoleHeader : 0);
  base::Bytes bytes;
  base::Append(bytes, kConsoleVersion, std::uint32_t{!device.console.Empty()});
  base::AppendText(bytes, text);
  return Answer(command, std::move(bytes));
}

/// vcam/README.md says what the six fields mean.
wire::Reply ManualControls(Device& device, const wire::Command& command) {
  return AnswerNumbers(command, device.settings.lastManualControl, device.settings.manualControlCommands, 0.0F, 0.008,
                       2.8, std::int32_t{100});
}

}  // namespace

wire::Reply HandleQuery(Device& device, const wire::Command& command) {
  switch (command.cdb[kelva::at::kSubCode]) {
    case kelva::query::kSelectedSize:
      return Size(device, command);
    case kelva::query::kUpgradeStatus:
      return Answer(command, device.upgrade.Status(device.options.now()));
    case kelva::query::kConsoleLog:
      return ConsolePiece(device, command);
    case kelva::query::kTime:
      return Time(device, command);
    case kelva::query::kReady:
      return AnswerNumbers(command, std::uint32_t{device.Ready()});
    case kelva::query::kDoneCommands:
      return AnswerNumbers(command, device.doneCount);
    case kelva::query::kBattery:
      return Battery(device, command);
    case kelva::query::kManualControls:
      return ManualControls(device, command);
    default:
      return Refuse(sense::kBadCommandField);
  }
}

}  // namespace vcam

#ifndef KELVA_VCAM_DEVICE_HANDLERS_H_
#define KELVA_VCAM_DEVICE_HANDLERS_H_

#include <algorithm>
#include <string>

#include "vcam/device/Device.h"
#include "vcam/device/Replies.h"
#include "vcam/device/SenseCodes.h"

// One function per operation code. Each checks its command, changes the device, and never throws for what a host sent.

namespace vcam {

using Handler = wire::Reply (*)(Device&, const wire::Command&);

/// One row of a table of handlers: an operation code or a sub-code, and what answers it.
struct Route {
  std::uint8_t code;
  Handler handle;
};

/// Lets the handler of `code` answer the command; refuses a code that the table lacks.
template <std::size_t Count>
wire::Reply Follow(const Route (&routes)[Count], std::uint8_t code, Device& device, const wire::Command& command) {
  const auto* route = std::find_if(routes, routes + Count, [&](const Route& one) { return one.code == code; });
  return route == routes + Count ? Refuse(sense::kBadCommandField) : route->handle(device, command);
}

/// A handler of commands without data.
template <wire::Reply (*handle)(Device&, const wire::Command&)>
wire::Reply WithoutData(Device& device, const wire::Command& command) {
  return HasNoData(command) ? handle(device, command) : Refuse(sense::kWrongDataLength);
}

/// A handler of commands whose data is a text.
template <wire::Reply (*handle)(Device&, const wire::Command&, const std::string& text)>
wire::Reply WithText(Device& device, const wire::Command& command) {
  const std::optional<std::string> text = TextOf(command);
  return text ? handle(device, command, *text) : Refuse(sense::kWrongDataLength);
}

wire::Reply HandleAction(Device& device, const wire::Command& command);
wire::Reply HandleUpgradeStart(Device& device, const wire::Command& command);
wire::Reply HandleUpgradeEnd(Device& device, const wire::Command& command);
wire::Reply HandleSelect(Device& device, const wire::Command& command);
wire::Reply HandleWriteEnd(Device& device, const wire::Command& command);
wire::Reply HandleReadChunk(Device& device, const wire::Command& command);
wire::Reply HandleWriteChunk(Device& device, const wire::Command& command);
wire::Reply HandleQuery(Device& device, const wire::Command& command);

/// Actions of other files, by sub-code.
wire::Reply SetNetworkName(Device& device, const wire::Command& command, const std::string& name);
wire::Reply SetPassphrase(Device& device, const wire::Command& command, const std::string& passphrase);
wire::Reply NoteAuthType(Device& device, const wire::Command& command);
wire::Reply NoteManualControl(Device& device, const wire::Command& command);
wire::Reply SwitchWifiOff(Device& device, const wire::Command& command);
wire::Reply CapturePicture(Device& device, const wire::Command& command);

/// Operation code to handler; a code outside 0xC0 to 0xC6 is refused.
wire::Reply Dispatch(Device& device, const wire::Command& command);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_HANDLERS_H_

#ifndef KELVA_VCAM_DEVICE_HANDLERS_H_
#define KELVA_VCAM_DEVICE_HANDLERS_H_

#include "vcam/device/Device.h"
#include "wire/Command.h"

// One function per operation code. Each checks its command, changes the device, and never throws for what a host sent.

namespace vcam {

wire::Reply HandleAction(Device& device, const wire::Command& command);
wire::Reply HandleUpgradeStart(Device& device, const wire::Command& command);
wire::Reply HandleUpgradeEnd(Device& device, const wire::Command& command);
wire::Reply HandleSelect(Device& device, const wire::Command& command);
wire::Reply HandleWriteEnd(Device& device, const wire::Command& command);
wire::Reply HandleReadChunk(Device& device, const wire::Command& command);
wire::Reply HandleWriteChunk(Device& device, const wire::Command& command);
wire::Reply HandleQuery(Device& device, const wire::Command& command);

/// Actions on the files of the storage and on settings, by sub-code.
wire::Reply DeletePath(Device& device, const wire::Command& command);
wire::Reply DeletePicture(Device& device, const wire::Command& command);
wire::Reply DeleteBatch(Device& device, const wire::Command& command);
wire::Reply SetNetworkName(Device& device, const wire::Command& command, std::size_t network);
wire::Reply SetPassphrase(Device& device, const wire::Command& command, std::size_t network);
wire::Reply NoteAuthType(Device& device, const wire::Command& command);
wire::Reply NoteManualControl(Device& device, const wire::Command& command);
wire::Reply SwitchWifiOff(Device& device, const wire::Command& command);
wire::Reply CapturePicture(Device& device, const wire::Command& command);

/// Operation code to handler; a code outside 0xC0 to 0xC6 is refused.
wire::Reply Dispatch(Device& device, const wire::Command& command);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_HANDLERS_H_

#ifndef KELVA_VCAM_DEVICE_HANDLERS_H_
#define KELVA_VCAM_DEVICE_HANDLERS_H_

#include "vcam/device/Command.h"
#include "vcam/device/Device.h"

// One function per operation code. Each checks its command, changes the device, and never throws for what a host sent.

namespace vcam {

Reply HandleAction(Device& device, const Command& command);
Reply HandleUpgradeStart(Device& device, const Command& command);
Reply HandleUpgradeEnd(Device& device, const Command& command);
Reply HandleSelect(Device& device, const Command& command);
Reply HandleWriteEnd(Device& device, const Command& command);
Reply HandleReadChunk(Device& device, const Command& command);
Reply HandleWriteChunk(Device& device, const Command& command);
Reply HandleQuery(Device& device, const Command& command);

/// Actions on the files of the storage and on settings, by sub-code.
Reply DeletePath(Device& device, const Command& command);
Reply DeletePicture(Device& device, const Command& command);
Reply DeleteBatch(Device& device, const Command& command);
Reply SetNetworkName(Device& device, const Command& command, std::size_t network);
Reply SetPassphrase(Device& device, const Command& command, std::size_t network);
Reply NoteAuthType(Device& device, const Command& command);
Reply NoteManualControl(Device& device, const Command& command);
Reply SwitchWifiOff(Device& device, const Command& command);
Reply CapturePicture(Device& device, const Command& command);

/// Operation code to handler; a code outside 0xC0 to 0xC6 is refused.
Reply Dispatch(Device& device, const Command& command);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_HANDLERS_H_

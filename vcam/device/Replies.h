#ifndef KELVA_VCAM_DEVICE_REPLIES_H_
#define KELVA_VCAM_DEVICE_REPLIES_H_

#include <optional>
#include <string>

#include "base/Bytes.h"
#include "src/wifi/VscRegister.h"
#include "wire/Command.h"

// The kinds of reply that handlers give, and their checks of a command's data phase.

namespace vcam {

/// Good status for a command without data, or one whose `moved` bytes were taken in.
wire::Reply Done(std::uint32_t moved = 0);
/// CHECK CONDITION for this reason; nothing moved.
wire::Reply Refuse(wire::Sense reason);
/// Good status with as much of `bytes` as the host has room for; none when it declared no data phase.
wire::Reply Answer(const wire::Command& command, base::Bytes bytes);

inline bool Is(const wire::Command& command, kelva::Operation operation) {
  return command.cdb[kelva::at::kOperation] == static_cast<std::uint8_t>(operation);
}
/// Whether the data phase, if any, runs from the camera.
bool MayAnswer(const wire::Command& command);
/// Whether the command has no data phase, or one of no bytes.
bool HasNoData(const wire::Command& command);
/// The NUL-terminated text of a data phase to the camera; nothing when there is none or its NUL is missing.
std::optional<std::string> TextOf(const wire::Command& command);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_REPLIES_H_

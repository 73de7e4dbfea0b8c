#ifndef KELVA_VCAM_DOOR_COMMAND_SESSION_H_
#define KELVA_VCAM_DOOR_COMMAND_SESSION_H_

#include <chrono>

#include "vcam/device/Command.h"

namespace vcam {

/// The way from one user client to a virtual camera, wherever that is. Ends its session when it is destroyed.
class CommandSession {
 public:
  virtual ~CommandSession() = default;
  /// kIOReturnSuccess, or why there is no session: kIOReturnExclusiveAccess, kIOReturnNoDevice.
  virtual int Start() = 0;
  virtual void End() = 0;
  /// Runs one command, waiting for it as long as it takes but at most `timeout`; a command that is not answered by then
  /// comes back as Transport::kHang. Sent exactly once, whatever happens.
  virtual Reply Execute(const Command& command, std::chrono::milliseconds timeout) = 0;
};

}  // namespace vcam

#endif  // KELVA_VCAM_DOOR_COMMAND_SESSION_H_

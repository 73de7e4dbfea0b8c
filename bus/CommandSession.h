#ifndef KELVA_BUS_COMMAND_SESSION_H_
#define KELVA_BUS_COMMAND_SESSION_H_

#include <chrono>

#include "wire/Command.h"

namespace bus {

/// The way from one user client to a virtual camera, wherever that is. Ends its session when it is destroyed.
class CommandSession {
 public:
  virtual ~CommandSession() = default;
  /// kIOReturnSuccess, or why there is no session: kIOReturnExclusiveAccess, kIOReturnNoDevice.
  virtual int Start() = 0;
  virtual void End() = 0;
  /// Runs one command, waiting for it as long as it takes but at most `timeout`; a command that is not answered by then
  /// comes back as Transport::kHang. Sent exactly once, whatever happens.
  virtual wire::Reply Execute(const wire::Command& command, std::chrono::milliseconds timeout) = 0;
};

}  // namespace bus

#endif  // KELVA_BUS_COMMAND_SESSION_H_

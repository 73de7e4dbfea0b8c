#ifndef KELVA_BUS_COMMAND_SESSION_H_
#define KELVA_BUS_COMMAND_SESSION_H_

#include <chrono>

#include "wire/Command.h"

namespace bus {

/// Carries the commands of one user client to a virtual camera, in this process or on a bus. Ends its session when it
/// is destroyed.
class CommandSession {
 public:
  virtual ~CommandSession() = default;
  /// kIOReturnSuccess, or why there is no session: kIOReturnExclusiveAccess, kIOReturnNoDevice.
  virtual int Start() = 0;
  virtual void End() = 0;
  /// Runs one command. Waits at most `timeout` for its answer, and then replies Transport::kHang. Sends the command
  /// exactly once, whatever happens.
  virtual wire::Reply Execute(const wire::Command& command, std::chrono::milliseconds timeout) = 0;
};

}  // namespace bus

#endif  // KELVA_BUS_COMMAND_SESSION_H_

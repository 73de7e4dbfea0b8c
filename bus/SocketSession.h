#ifndef KELVA_BUS_SOCKET_SESSION_H_
#define KELVA_BUS_SOCKET_SESSION_H_

#include <memory>
#include <string>

#include "bus/CommandSession.h"

namespace bus {

/// A session with a camera of a bus, on a connection of its own, so that it ends when this process does. If the bus
/// ends, the camera counts as unplugged.
std::unique_ptr<CommandSession> MakeSocketSession(const std::string& path, std::uint32_t camera);

}  // namespace bus

#endif  // KELVA_BUS_SOCKET_SESSION_H_

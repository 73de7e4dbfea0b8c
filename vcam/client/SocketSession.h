#ifndef KELVA_VCAM_CLIENT_SOCKET_SESSION_H_
#define KELVA_VCAM_CLIENT_SOCKET_SESSION_H_

#include <memory>
#include <string>

#include "vcam/door/CommandSession.h"

namespace vcam::client {

/// A session with a camera of a bus, on a connection of its own, so that it ends when this process does. A bus that has
/// gone is a camera that has gone.
std::unique_ptr<CommandSession> MakeSocketSession(const std::string& path, std::uint32_t camera);

}  // namespace vcam::client

#endif  // KELVA_VCAM_CLIENT_SOCKET_SESSION_H_

#ifndef KELVA_BUS_USER_CLIENT_DOOR_H_
#define KELVA_BUS_USER_CLIENT_DOOR_H_

#include <memory>

#include "bus/CommandSession.h"
#include "darwin/registry/Registry.h"

namespace bus {

/// The driver's user client over a virtual camera: selectors 0, 1 and 2.
///
/// Selector 2 reads and writes the caller's memory at the address in the request, at most the length asked for, and only
/// for the directions 1 and 2. The time-out of the request is taken as seconds. A refusal comes back as a result status
/// (wire/TransferStatus.h); a camera that has gone and a time-out are return codes.
std::unique_ptr<darwin::UserClient> MakeUserClient(std::unique_ptr<CommandSession> session);

}  // namespace bus

#endif  // KELVA_BUS_USER_CLIENT_DOOR_H_

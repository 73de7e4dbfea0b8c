#ifndef KELVA_BUS_BUS_CLIENT_H_
#define KELVA_BUS_BUS_CLIENT_H_

#include <memory>
#include <string>

#include "darwin/registry/Registry.h"

namespace bus {

/// The near end of a bus: its cameras appear in the registry and leave it as they are plugged and unplugged, and commands
/// travel to them, each exactly once. When the bus ends, every camera of it has been unplugged.
/// Throws std::runtime_error with one sentence when nobody serves the path.
std::unique_ptr<darwin::RegistrySource> ConnectBus(const std::string& socketPath);

}  // namespace bus

#endif  // KELVA_BUS_BUS_CLIENT_H_

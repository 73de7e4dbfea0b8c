#ifndef KELVA_BUS_BUS_CLIENT_H_
#define KELVA_BUS_BUS_CLIENT_H_

#include <memory>
#include <string>

#include "darwin/registry/Registry.h"

namespace bus {

/// The near end of a bus. Its cameras are in the registry while they are plugged in, and each command is sent to them
/// exactly once. When the bus ends, all of its cameras count as unplugged. Throws std::runtime_error with one sentence
/// when nobody serves the path.
std::unique_ptr<darwin::RegistrySource> ConnectBus(const std::string& socketPath);

}  // namespace bus

#endif  // KELVA_BUS_BUS_CLIENT_H_

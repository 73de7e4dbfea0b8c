#ifndef KELVA_EMBED_VIRTUAL_BUS_H_
#define KELVA_EMBED_VIRTUAL_BUS_H_

#include <string>

namespace kelva {

/// Makes the cameras of a bus of virtual cameras, which `kelva-vcam serve --virtual PATH` serves, the cameras of this
/// process, in the place of the machine's. Call it before the first call that looks for cameras, from any thread; all
/// other calls stay as they are. Throws std::runtime_error with one sentence when nobody serves the path.
///
/// When the bus ends, all of its cameras count as unplugged. Not on macOS.
void UseVirtualBus(const std::string& path);

}  // namespace kelva

#endif  // KELVA_EMBED_VIRTUAL_BUS_H_

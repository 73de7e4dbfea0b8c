#ifndef KELVA_UI_LINUX_KELVA_HELPER_CAMERA_SOURCE_H_
#define KELVA_UI_LINUX_KELVA_HELPER_CAMERA_SOURCE_H_

#include <string>

namespace helper {

/// Decides where this process's cameras come from: the virtual bus whose socket is `virtualBus`, or, when that is
/// empty, this machine's own devices. Call it once, before the first look at the registry. Throws std::runtime_error
/// when the bus cannot be reached.
void UseCamerasOf(const std::string& virtualBus);

}  // namespace helper

#endif  // KELVA_UI_LINUX_KELVA_HELPER_CAMERA_SOURCE_H_

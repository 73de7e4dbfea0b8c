#ifndef KELVA_APPS_TOOL_BUS_CAMERAS_H_
#define KELVA_APPS_TOOL_BUS_CAMERAS_H_

#include <string>
#include <vector>

#include "apps/commandline/Context.h"
#include "apps/doctor/Finding.h"
#include "apps/doctor/Holder.h"

// A virtual bus as the source of cameras.

namespace apps {

/// The cameras of the bus behind this socket are the ones that this process sees. Throws Failure.
void UseBus(const std::string& socket);

/// The processes that hold the camera with this serial number; empty when that cannot be told.
std::vector<doctor::Holder> HoldersOnBus(const std::string& socket, const std::string& serial);

/// The cameras of the bus that are of the bad kind. Empty when that cannot be told.
std::vector<doctor::Finding> ObstaclesOnBus(const std::string& socket);

/// Where programs stand in line for that camera.
LinePlace LineOnBus(const std::string& socket, const std::string& serial);

}  // namespace apps

#endif  // KELVA_APPS_TOOL_BUS_CAMERAS_H_

#ifndef KELVA_APPS_TOOL_CAMERA_SOURCE_H_
#define KELVA_APPS_TOOL_CAMERA_SOURCE_H_

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "apps/commandline/Context.h"
#include "apps/doctor/Finding.h"

namespace apps {

/// Decides where cameras come from: the virtual bus behind this socket, otherwise this machine.
/// Neither takes the place of the other when it fails. `note` receives what the system has to say, on any thread.
/// Throws Failure.
void ChooseCameraSource(const std::optional<std::string>& socket, const std::function<void(const std::string&)>& note);

/// Names the processes that hold the camera with this serial number, from the same source of cameras as above; empty
/// when that cannot be told.
std::string HoldersInWords(const std::optional<std::string>& socket, const std::string& serial);

/// What keeps cameras of the same source from being used, as far as it shows without a question to them. A camera that another
/// program holds is no finding, nor is it that there is none.
std::vector<doctor::Finding> ObstaclesToCameras(const std::optional<std::string>& socket);

/// Where programs stand in line for this camera: all that reach it can open that place. Nothing when there is none.
std::optional<LinePlace> LineOf(const std::optional<std::string>& socket, const std::string& serial);

}  // namespace apps

#endif  // KELVA_APPS_TOOL_CAMERA_SOURCE_H_

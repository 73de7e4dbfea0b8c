// Launches the application each time a camera is attached after the start.

#include "src/ui/linux/KelvaHelper/AttachListener.h"

#include "src/ui/linux/KelvaHelper/DesktopLauncher.h"

namespace helper {
namespace {

// False while the cameras that are there already are reported. Callbacks read it for as long as the process lives.
bool launch = false;

}  // namespace

void Callback(boost::shared_ptr<Camera>, void* context) {
  if (*static_cast<const bool*>(context)) LaunchDesktopApplication();
}

void ListenForCameras() {
  launch = false;
  Camera::ListenForCameraAttach(Callback, &launch, false);
  launch = true;
}

}  // namespace helper

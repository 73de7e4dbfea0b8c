#ifndef KELVA_APPS_CAMERA_ATTACHED_H_
#define KELVA_APPS_CAMERA_ATTACHED_H_

#include <boost/shared_ptr.hpp>
#include <optional>
#include <string>
#include <vector>

#include "apps/camera/Registry.h"
#include "apps/commandline/StdoutDiversion.h"
#include "src/wifi/Camera.h"

namespace apps {

/// One camera that is attached, not opened.
struct AttachedCamera {
  RegistryCamera facts;
  boost::shared_ptr<Camera> camera;
};

/// The cameras attached now. Throws Failure when the system refused the search.
std::vector<AttachedCamera> FindAttached(StdoutDiversion& diversion);

/// The serial number asked for: the option's, else KELVA_SERIAL's; nothing when neither is set or both are empty.
std::optional<std::string> WantedSerial(const std::optional<std::string>& option);

/// The one camera that is meant. Throws Failure: none attached, none with that number, several and no choice.
AttachedCamera Choose(std::vector<AttachedCamera> attached, const std::optional<std::string>& serial);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_ATTACHED_H_

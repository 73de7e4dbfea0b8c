#ifndef KELVA_APPS_DOCTOR_MACOS_PROBE_H_
#define KELVA_APPS_DOCTOR_MACOS_PROBE_H_

#include <IOKit/IOKitLib.h>

#include "apps/doctor/macos/Facts.h"

namespace apps::doctor::macos {

/// Asks the camera that a driver's service serves whether it is ready, in a session of its own. Waits as long as a command may
/// take. Changes nothing on the camera. The service stays the caller's.
Answer AskCamera(io_service_t service);

}  // namespace apps::doctor::macos

#endif  // KELVA_APPS_DOCTOR_MACOS_PROBE_H_

#ifndef KELVA_APPS_DOCTOR_LINUX_PROBE_H_
#define KELVA_APPS_DOCTOR_LINUX_PROBE_H_

#include <string>

#include "apps/doctor/linux/Facts.h"
#include "darwin/sg/SgSystem.h"

namespace apps::doctor {

/// Asks the camera at a node whether it is ready. Waits at most five seconds, not the hundred that a command may take:
/// the doctor must not keep a person waiting. Changes nothing on the camera.
Answer AskCamera(const std::string& node, darwin::sg::SgSystem& system = darwin::sg::SgSystem::Kernel());

}  // namespace apps::doctor

#endif  // KELVA_APPS_DOCTOR_LINUX_PROBE_H_

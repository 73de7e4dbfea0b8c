#ifndef KELVA_CLI_DOCTOR_PROBE_H_
#define KELVA_CLI_DOCTOR_PROBE_H_

#include <string>

#include "Facts.h"
#include "darwin/sg/SgSystem.h"

namespace kelva::doctor {

/// Asks the camera at a node whether it is ready, and waits at most five seconds: the hundred seconds that commands
/// have are for work, not for a first look. Changes nothing on the camera.
Answer AskCamera(const std::string& node, darwin::sg::SgSystem& system = darwin::sg::SgSystem::Kernel());

}  // namespace kelva::doctor

#endif  // KELVA_CLI_DOCTOR_PROBE_H_

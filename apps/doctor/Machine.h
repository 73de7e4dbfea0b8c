#ifndef KELVA_APPS_DOCTOR_MACHINE_H_
#define KELVA_APPS_DOCTOR_MACHINE_H_

#include <string>
#include <vector>

#include "apps/doctor/Finding.h"
#include "apps/doctor/Holder.h"

// What each system answers in its own way.

namespace apps::doctor {

/// Looks at this machine and judges what it shows. Asks each camera that is usable and free one short question, and
/// changes nothing. Never empty: without a camera it says that there is none.
std::vector<Finding> ExamineMachine();

/// The same without a question to a camera, and quicker: what the machine itself shows, but for who holds a camera on Linux.
std::vector<Finding> LookAtMachine();

/// The processes, except this one, that hold the camera with this serial number, as far as the system tells.
std::vector<Holder> HoldersOfCamera(const std::string& serial);

}  // namespace apps::doctor

#endif  // KELVA_APPS_DOCTOR_MACHINE_H_

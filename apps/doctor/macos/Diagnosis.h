#ifndef KELVA_APPS_DOCTOR_MACOS_DIAGNOSIS_H_
#define KELVA_APPS_DOCTOR_MACOS_DIAGNOSIS_H_

#include <vector>

#include "apps/doctor/Finding.h"
#include "apps/doctor/macos/Facts.h"

namespace apps::doctor::macos {

/// Judges the facts. Gives for each camera the first obstacle, counted from the cable upwards. Never empty: without a camera
/// it says that there is none.
std::vector<Finding> Diagnose(const std::vector<CameraFacts>& cameras);

}  // namespace apps::doctor::macos

#endif  // KELVA_APPS_DOCTOR_MACOS_DIAGNOSIS_H_

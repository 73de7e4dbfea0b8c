#ifndef KELVA_APPS_DOCTOR_LINUX_DIAGNOSIS_H_
#define KELVA_APPS_DOCTOR_LINUX_DIAGNOSIS_H_

#include <vector>

#include "apps/doctor/Finding.h"
#include "apps/doctor/linux/Facts.h"

namespace apps::doctor {

/// Judges the facts. Gives for each camera the first obstacle, counted from the cable upwards, then the findings about
/// the machine. Never empty: without a camera it says that there is none.
std::vector<Finding> Diagnose(const MachineFacts& facts);

}  // namespace apps::doctor

#endif  // KELVA_APPS_DOCTOR_LINUX_DIAGNOSIS_H_

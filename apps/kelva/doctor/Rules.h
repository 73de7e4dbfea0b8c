#ifndef KELVA_APPS_KELVA_DOCTOR_RULES_H_
#define KELVA_APPS_KELVA_DOCTOR_RULES_H_

#include <string>

namespace apps::doctor {

/// The file of this system's udev rules as udev finds it: in the first of its folders that has it. Empty when it is not
/// installed. `root` is what stands before each folder, "" for the system itself.
std::string InstalledRules(const std::string& root = "");

}  // namespace apps::doctor

#endif  // KELVA_APPS_KELVA_DOCTOR_RULES_H_

#ifndef KELVA_APPS_DOCTOR_LINUX_RULES_H_
#define KELVA_APPS_DOCTOR_LINUX_RULES_H_

#include <string>

namespace apps::doctor {

/// The installed udev rule: the file in the first of udev's folders that has it. Empty when none has it. `root` is put
/// before each folder; "" is the system itself.
std::string InstalledRules(const std::string& root = "");

}  // namespace apps::doctor

#endif  // KELVA_APPS_DOCTOR_LINUX_RULES_H_

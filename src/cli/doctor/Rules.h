#ifndef KELVA_CLI_DOCTOR_RULES_H_
#define KELVA_CLI_DOCTOR_RULES_H_

#include <string>

namespace kelva::doctor {

/// The file of this system's udev rules as udev finds it: in the first of its folders that has it. Empty when it is not
/// installed. `root` is what stands before each folder, "" for the system itself.
std::string InstalledRules(const std::string& root = "");

}  // namespace kelva::doctor

#endif  // KELVA_CLI_DOCTOR_RULES_H_

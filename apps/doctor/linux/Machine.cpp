// The doctor on Linux: asks udev, sysfs and /proc.

#include "apps/doctor/Machine.h"

#include "apps/doctor/linux/Diagnosis.h"
#include "apps/doctor/linux/Holders.h"
#include "apps/doctor/linux/Probe.h"
#include "apps/doctor/linux/Survey.h"

namespace apps::doctor {

std::vector<Finding> ExamineMachine() {
  return Diagnose(SurveyMachine([](const std::string& node) { return AskCamera(node); }));
}

std::vector<Finding> LookAtMachine() {
  return Diagnose(SurveyMachine(nullptr));
}

std::vector<Holder> HoldersOfCamera(const std::string& serial) {
  const std::string node = NodeOfCamera(serial);
  return node.empty() ? std::vector<Holder>() : HoldersOf(node);
}

}  // namespace apps::doctor

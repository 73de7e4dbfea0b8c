// The doctor on Linux: asks udev, sysfs and /proc.

#include "apps/doctor/Machine.h"

#include <utility>

#include "apps/doctor/linux/Diagnosis.h"
#include "apps/doctor/linux/Holders.h"
#include "apps/doctor/linux/Mounts.h"
#include "apps/doctor/linux/Probe.h"
#include "apps/doctor/linux/Survey.h"

namespace apps::doctor {

std::vector<Finding> ExamineMachine() {
  std::vector<Finding> findings = Diagnose(SurveyMachine([](const std::string& node) { return AskCamera(node); }));
  for (Finding& finding : FindingsAbout(Mounts(), IsLeftOver)) findings.push_back(std::move(finding));
  return findings;
}

std::vector<Finding> LookAtMachine() {
  return Diagnose(SurveyMachine(nullptr));
}

std::vector<Holder> HoldersOfCamera(const std::string& serial) {
  const std::string node = NodeOfCamera(serial);
  return node.empty() ? std::vector<Holder>() : HoldersOf(node);
}

}  // namespace apps::doctor

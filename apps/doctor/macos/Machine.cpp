// The doctor on macOS: asks the I/O registry.

#include "apps/doctor/Machine.h"

#include "apps/doctor/macos/Diagnosis.h"
#include "apps/doctor/macos/Probe.h"
#include "apps/doctor/macos/Survey.h"

namespace apps::doctor {

std::vector<Finding> ExamineMachine() {
  return macos::Diagnose(macos::SurveyRegistry(macos::AskCamera));
}

std::vector<Finding> LookAtMachine() {
  return macos::Diagnose(macos::SurveyRegistry([](io_service_t) { return macos::Answer::kNotAsked; }));
}

std::vector<Holder> HoldersOfCamera(const std::string& serial) {
  return macos::HoldersBySerial(serial);
}

}  // namespace apps::doctor

#ifndef KELVA_APPS_KELVA_DOCTOR_SURVEY_H_
#define KELVA_APPS_KELVA_DOCTOR_SURVEY_H_

#include <functional>
#include <string>
#include <vector>

#include "apps/kelva/doctor/Facts.h"

namespace apps::doctor {

/// Puts one short question to the camera at a node, and says how it was answered.
using Probe = std::function<Answer(const std::string& node)>;

/// Looks at this machine: USB, the kernel's drivers, the nodes, and who holds them. Only a camera that nothing else is
/// in the way of is asked a question, through `probe`; everything else is looked at from outside.
MachineFacts SurveyMachine(const Probe& probe);

/// The processes other than this one that hold the camera with this serial number.
std::vector<Holder> HoldersOfCamera(const std::string& serial);

}  // namespace apps::doctor

#endif  // KELVA_APPS_KELVA_DOCTOR_SURVEY_H_

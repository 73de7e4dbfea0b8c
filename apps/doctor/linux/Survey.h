#ifndef KELVA_APPS_DOCTOR_LINUX_SURVEY_H_
#define KELVA_APPS_DOCTOR_LINUX_SURVEY_H_

#include <functional>
#include <string>
#include <vector>

#include "apps/doctor/linux/Facts.h"

namespace apps::doctor {

/// Asks the camera at a node one short question and says how the camera answered.
using Probe = std::function<Answer(const std::string& node)>;

/// Looks at this machine: USB, the kernel's drivers, the nodes, and who holds them. Sends nothing to a camera, except
/// that `probe` asks each camera whose node is usable and free. Without a probe nobody looks for who holds a node either:
/// that goes through all processes.
MachineFacts SurveyMachine(const Probe& probe);

/// The node of the camera with this serial number, such as "/dev/sg3"; empty when there is none.
std::string NodeOfCamera(const std::string& serial);

}  // namespace apps::doctor

#endif  // KELVA_APPS_DOCTOR_LINUX_SURVEY_H_

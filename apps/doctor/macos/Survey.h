#ifndef KELVA_APPS_DOCTOR_MACOS_SURVEY_H_
#define KELVA_APPS_DOCTOR_MACOS_SURVEY_H_

#include <IOKit/IOKitLib.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "apps/doctor/macos/Facts.h"

namespace apps::doctor::macos {

/// Asks the camera that a driver's service serves one short question. The service stays the caller's.
using Probe = std::function<Answer(io_service_t service)>;

/// Looks through the I/O registry for cameras: those with a driver, those taken for a disc drive, those without a driver.
/// Sends nothing to a camera, except that `probe` asks each one that has a driver and that nobody holds.
std::vector<CameraFacts> SurveyRegistry(const Probe& probe);

/// The processes, except this one, that have the driver of the camera with this serial number open.
std::vector<Holder> HoldersBySerial(const std::string& serial);

/// The process that the system names as a user client's creator: "pid 508, kelva". Nothing when the text is another.
std::optional<Holder> ReadCreator(const std::string& text);

}  // namespace apps::doctor::macos

#endif  // KELVA_APPS_DOCTOR_MACOS_SURVEY_H_

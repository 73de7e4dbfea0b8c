#ifndef KELVA_APPS_DOCTOR_MACOS_FACTS_H_
#define KELVA_APPS_DOCTOR_MACOS_FACTS_H_

#include <string>
#include <vector>

#include "apps/doctor/Holder.h"

namespace apps::doctor::macos {

/// How a camera answered one short question.
enum class Answer {
  kNotAsked,
  kAnswers,
  kRefused,  ///< the driver begins no session with it
  kFails
};

/// What the I/O registry shows of one camera, from the cable upwards. Members above the first missing one are empty.
struct CameraFacts {
  std::string serial{};
  /// The system has read the camera's inquiry data.
  bool isSetUp = false;
  /// The system took the camera for a disc drive.
  bool isDisc = false;
  /// The class of the driver that serves the camera; empty when none does.
  std::string driver{};
  /// The driver's own entry names this maker, as programs look for it.
  bool namesVendor = false;
  /// Processes other than this one that have the driver open.
  std::vector<Holder> holders{};
  Answer answer = Answer::kNotAsked;
};

}  // namespace apps::doctor::macos

#endif  // KELVA_APPS_DOCTOR_MACOS_FACTS_H_

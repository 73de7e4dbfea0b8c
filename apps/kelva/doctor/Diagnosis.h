#ifndef KELVA_APPS_KELVA_DOCTOR_DIAGNOSIS_H_
#define KELVA_APPS_KELVA_DOCTOR_DIAGNOSIS_H_

#include <string>
#include <string_view>
#include <vector>

#include "apps/kelva/doctor/Facts.h"

namespace apps::doctor {

/// What can be said about a camera or the machine.
enum class Condition {
  kWell,
  kNoDevice,
  kDriverNotLoaded,
  kNotSetUp,
  kNoGenericDriver,
  kNoNode,
  kNoPermission,
  kHeld,
  kBadCamera,
  kNotAnswering,
  kNarrow,
  kNoUdev,
};

/// The condition's stable word, for scripts.
std::string_view WordOf(Condition condition);

/// One finding, and what mends it.
struct Finding {
  Condition condition = Condition::kWell;
  /// The camera's serial number; empty for a finding about the machine or a camera that shows none.
  std::string serial;
  /// What was found, in one sentence.
  std::string sentence;
  /// The command that mends it, ready to be pasted; empty when no command does.
  std::string command;
  /// What to do besides, or instead of a command; may be empty.
  std::string advice;
};

/// Judges the facts. Gives for each camera the first obstacle, counted from the cable upwards, then the findings about
/// the machine. Never empty: without a camera it says that there is none.
std::vector<Finding> Diagnose(const MachineFacts& facts);

/// True when this condition does not keep anyone from using a camera.
bool IsHarmless(Condition condition);

}  // namespace apps::doctor

#endif  // KELVA_APPS_KELVA_DOCTOR_DIAGNOSIS_H_

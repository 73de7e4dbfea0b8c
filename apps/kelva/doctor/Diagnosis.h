#ifndef KELVA_APPS_KELVA_DOCTOR_DIAGNOSIS_H_
#define KELVA_APPS_KELVA_DOCTOR_DIAGNOSIS_H_

#include <string>
#include <string_view>
#include <vector>

#include "apps/kelva/doctor/Facts.h"

namespace apps::doctor {

/// What holds of a camera or of the machine.
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
  /// One sentence: what is so.
  std::string sentence;
  /// The command that mends it, ready to be pasted; empty when none does.
  std::string command;
  /// What to do where no command helps, or besides; empty when there is nothing to say.
  std::string advice;
};

/// Judges the facts: for each camera the first thing that is in its way, counted from the cable upwards, and then what
/// holds of the machine. Never empty: without a camera it says so.
std::vector<Finding> Diagnose(const MachineFacts& facts);

/// True when nothing of this is in the way of using a camera.
bool IsHarmless(Condition condition);

}  // namespace apps::doctor

#endif  // KELVA_APPS_KELVA_DOCTOR_DIAGNOSIS_H_

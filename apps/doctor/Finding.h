#ifndef KELVA_APPS_DOCTOR_FINDING_H_
#define KELVA_APPS_DOCTOR_FINDING_H_

#include <string>
#include <string_view>
#include <vector>

#include "apps/commandline/Json.h"

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
  kNoVendor,
  kMounted,
  kLeftMount,
};

/// The condition's stable word, for scripts.
std::string_view WordOf(Condition condition);

/// True when this condition does not keep anyone from using a camera.
bool IsHarmless(Condition condition);

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

/// Those that keep somebody from using a camera, and that no program or camera ends soon: not that there is none, nor that
/// another program holds one.
std::vector<Finding> Obstacles(std::vector<Finding> findings);

/// A list of them.
Json InJson(const std::vector<Finding>& findings);

}  // namespace apps::doctor

#endif  // KELVA_APPS_DOCTOR_FINDING_H_

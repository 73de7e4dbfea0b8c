// The names under which a person arms the faults of a virtual camera.
#include "vcam/faults/Fault.h"

#include "vcam/faults/Named.h"

namespace vcam {
namespace {

constexpr std::array kFaults{
    Named{FaultKind::kFail, "fail"},
    Named{FaultKind::kShort, "short"},
    Named{FaultKind::kSurplusOne, "surplus1"},
    Named{FaultKind::kSurplusTwo, "surplus2"},
    Named{FaultKind::kStall, "stall"},
    Named{FaultKind::kHang, "hang"},
    Named{FaultKind::kSlow, "slow"},
    Named{FaultKind::kUnplugAtByte, "unplug"},
    Named{FaultKind::kLieAboutSize, "lie-size"},
    Named{FaultKind::kWrongCount, "wrong-count"},
    Named{FaultKind::kWrongOffset, "wrong-offset"},
    Named{FaultKind::kUnterminatedName, "unterminated-name"},
    Named{FaultKind::kEndless, "endless"},
    Named{FaultKind::kChanging, "changing"},
    Named{FaultKind::kUpgradeFails, "upgrade-fails"},
};

constexpr auto kKinds = ValuesIn(kFaults);

}  // namespace

std::string_view NameOf(FaultKind kind) {
  return NameIn(kFaults, kind);
}

std::optional<FaultKind> FaultByName(std::string_view name) {
  return FindIn(kFaults, name);
}

std::span<const FaultKind> AllFaults() {
  return kKinds;
}

std::string FaultNames(std::string_view between) {
  return NamesIn(kFaults, between);
}

}  // namespace vcam

#include "vcam/faults/Fault.h"

#include <algorithm>
#include <array>

namespace vcam {
namespace {

struct Named {
  FaultKind kind;
  std::string_view name;
};

constexpr std::array kNames{
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

constexpr auto kKinds = [] {
  std::array<FaultKind, kNames.size()> kinds{};
  std::transform(kNames.begin(), kNames.end(), kinds.begin(), [](const Named& named) { return named.kind; });
  return kinds;
}();

}  // namespace

std::string_view NameOf(FaultKind kind) {
  const auto found = std::find_if(kNames.begin(), kNames.end(), [&](const Named& named) { return named.kind == kind; });
  return found == kNames.end() ? "unknown" : found->name;
}

std::optional<FaultKind> FaultByName(std::string_view name) {
  const auto found = std::find_if(kNames.begin(), kNames.end(), [&](const Named& named) { return named.name == name; });
  if (found == kNames.end()) return std::nullopt;
  return found->kind;
}

std::span<const FaultKind> AllFaults() {
  return kKinds;
}

}  // namespace vcam

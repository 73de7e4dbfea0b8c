#include "vcam/usbip/WireFault.h"

#include <algorithm>
#include <array>

namespace vcam::usbip {
namespace {

struct Named {
  WireFault fault;
  std::string_view name;
};

constexpr std::array kNames{
    Named{WireFault::kHalfResidue, "half-residue"},
    Named{WireFault::kHugeResidue, "huge-residue"},
    Named{WireFault::kZeroResidue, "zero-residue"},
    Named{WireFault::kSkipData, "skip-data"},
    Named{WireFault::kFailNoSense, "fail-no-sense"},
    Named{WireFault::kWrongTag, "wrong-tag"},
    Named{WireFault::kPhaseError, "phase-error"},
    Named{WireFault::kShortStatus, "short-status"},
    Named{WireFault::kBabble, "babble"},
    Named{WireFault::kPull, "pull"},
};

constexpr auto kFaults = [] {
  std::array<WireFault, kNames.size()> faults{};
  std::transform(kNames.begin(), kNames.end(), faults.begin(), [](const Named& named) { return named.fault; });
  return faults;
}();

}  // namespace

std::string_view NameOf(WireFault fault) {
  const auto found =
      std::find_if(kNames.begin(), kNames.end(), [&](const Named& named) { return named.fault == fault; });
  return found == kNames.end() ? "none" : found->name;
}

std::optional<WireFault> WireFaultByName(std::string_view name) {
  const auto found = std::find_if(kNames.begin(), kNames.end(), [&](const Named& named) { return named.name == name; });
  if (found == kNames.end()) return std::nullopt;
  return found->fault;
}

std::span<const WireFault> AllWireFaults() {
  return kFaults;
}

}  // namespace vcam::usbip

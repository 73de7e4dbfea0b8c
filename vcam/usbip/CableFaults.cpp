// The faults of a USB cable: their names, which commands they spoil, and the `--fault NAME@N` of the command line.
#include "vcam/usbip/CableFaults.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "vcam/faults/Named.h"

namespace vcam::usbip {
namespace {

constexpr std::array kFaults{
    Named{CableFault::kHalfResidue, "half-residue"},
    Named{CableFault::kHugeResidue, "huge-residue"},
    Named{CableFault::kZeroResidue, "zero-residue"},
    Named{CableFault::kSkipData, "skip-data"},
    Named{CableFault::kFailNoSense, "fail-no-sense"},
    Named{CableFault::kWrongTag, "wrong-tag"},
    Named{CableFault::kPhaseError, "phase-error"},
    Named{CableFault::kShortStatus, "short-status"},
    Named{CableFault::kBabble, "babble"},
    Named{CableFault::kPull, "pull"},
};

constexpr auto kValues = ValuesIn(kFaults);

std::uint64_t PositionOf(std::string_view digits) {
  std::uint64_t value = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (read.ec != std::errc() || read.ptr != digits.data() + digits.size() || value == 0) {
    throw std::runtime_error("A fault comes at a positive number, as in short@3, not at \"" + std::string(digits) +
                             "\".");
  }
  return value;
}

}  // namespace

std::string_view NameOf(CableFault fault) {
  return NameIn(kFaults, fault);
}

std::optional<CableFault> CableFaultByName(std::string_view name) {
  return FindIn(kFaults, name);
}

std::span<const CableFault> AllCableFaults() {
  return kValues;
}

void CableFaults::Arm(CableFault fault, std::uint64_t at) {
  const std::lock_guard lock(mutex_);
  armed_.push_back({fault, commands_ + at});
}

void CableFaults::Disarm() {
  const std::lock_guard lock(mutex_);
  armed_.clear();
}

CableFault CableFaults::Next() {
  const std::lock_guard lock(mutex_);
  const std::uint64_t command = ++commands_;
  const auto meant = std::find_if(armed_.begin(), armed_.end(), [&](const Armed& one) { return one.at == command; });
  return meant == armed_.end() ? CableFault::kNone : meant->fault;
}

std::uint64_t CableFaults::Commands() const {
  const std::lock_guard lock(mutex_);
  return commands_;
}

void ArmByText(std::string_view text, VirtualCamera& camera, CableFaults& cable) {
  const std::size_t mark = text.find('@');
  const std::string_view name = text.substr(0, mark);
  const std::uint64_t at = mark == std::string_view::npos ? 1 : PositionOf(text.substr(mark + 1));
  if (const auto ofCable = CableFaultByName(name)) return cable.Arm(*ofCable, at);
  if (const auto ofCamera = FaultByName(name)) return camera.Arm({*ofCamera, at});
  throw std::runtime_error("There is no fault " + std::string(name) + "; choose one of " + AllFaultNames() + ".");
}

std::string AllFaultNames() {
  return FaultNames() + ", " + NamesIn(kFaults);
}

}  // namespace vcam::usbip

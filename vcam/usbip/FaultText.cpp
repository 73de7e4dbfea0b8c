#include "vcam/usbip/FaultText.h"

#include <charconv>
#include <stdexcept>

namespace vcam::usbip {
namespace {

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

void ArmByText(std::string_view text, VirtualCamera& camera, WireFaults& cable) {
  const std::size_t mark = text.find('@');
  const std::string_view name = text.substr(0, mark);
  const std::uint64_t at = mark == std::string_view::npos ? 1 : PositionOf(text.substr(mark + 1));
  if (const auto ofCable = WireFaultByName(name)) return cable.Arm(*ofCable, at);
  if (const auto ofCamera = FaultByName(name)) return camera.Arm({*ofCamera, at});
  throw std::runtime_error("There is no fault " + std::string(name) + "; choose one of " + FaultNames() + ".");
}

std::string FaultNames() {
  std::string names;
  for (const FaultKind kind : AllFaults()) names += std::string(NameOf(kind)) + ", ";
  for (const WireFault fault : AllWireFaults()) names += std::string(NameOf(fault)) + ", ";
  names.resize(names.size() - 2);
  return names;
}

}  // namespace vcam::usbip

#ifndef KELVA_VCAM_FAULTS_FAULT_H_
#define KELVA_VCAM_FAULTS_FAULT_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vcam {

/// What can go wrong on request. Each fault works at every command; the table in vcam/README.md says what it does.
enum class FaultKind : std::uint8_t {
  kFail,              ///< the n-th command is refused as a hardware error
  kShort,             ///< the n-th command moves one byte less
  kSurplusOne,        ///< the n-th command moves one byte more
  kSurplusTwo,        ///< the n-th command moves two bytes more
  kStall,             ///< the n-th command's pipe halts
  kHang,              ///< the n-th command is never answered
  kSlow,              ///< from now on every command takes n milliseconds
  kUnplugAtByte,      ///< the camera goes away when n more bytes have moved
  kLieAboutSize,      ///< from the n-th command on, sizes and byte counts that the camera tells are 7 too large
  kWrongCount,        ///< from the n-th command on, counts in answers are 0x7FFFFFFF
  kWrongOffset,       ///< from the n-th command on, offsets in answers are 0x7FFFFFF0
  kUnterminatedName,  ///< from the n-th command on, the NULs after names are missing
  kEndless,           ///< from the n-th command on, answers never end
  kChanging,          ///< from the n-th command on, the same question gets another answer each time
  kUpgradeFails,      ///< the next firmware upgrade fails half-way
};

struct Fault {
  FaultKind kind;
  /// Which command, counted from 1 for the next one; for kSlow milliseconds, for kUnplugAtByte bytes.
  std::uint64_t at = 1;
};

/// The fault's name as `kelva-vcam fault` takes it.
std::string_view NameOf(FaultKind kind);
std::optional<FaultKind> FaultByName(std::string_view name);
/// All faults, in the order of the enumeration.
std::span<const FaultKind> AllFaults();
/// Their names with `between` between them, for messages and help.
std::string FaultNames(std::string_view between = ", ");

}  // namespace vcam

#endif  // KELVA_VCAM_FAULTS_FAULT_H_

#ifndef KELVA_VCAM_FAULTS_FALSIFY_H_
#define KELVA_VCAM_FAULTS_FALSIFY_H_

#include <cstdint>

#include "vcam/device/DataSet.h"
#include "vcam/faults/Fault.h"
#include "wire/Command.h"

namespace vcam {

/// The command that a fault falsifies.
struct FalsifiedCommand {
  const wire::Command& command;
  /// Marks of the selected data set; null when there is none.
  const Marks* marks;
  /// Whether the fault names this command, not an earlier one.
  bool isTheOne;
  /// 1 for that command, 2 for the next, ...
  std::uint64_t ordinal;
};

/// Falsifies the reply of a command that ran. If the fault names this command and its reply has nothing that the fault
/// is about (no count, no name, ...), another effect takes its place. vcam/README.md lists both.
void Falsify(FaultKind kind, const FalsifiedCommand& about, wire::Reply& reply);

}  // namespace vcam

#endif  // KELVA_VCAM_FAULTS_FALSIFY_H_

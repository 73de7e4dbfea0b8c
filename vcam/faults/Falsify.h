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
  /// Whether this is the very command that the fault names, not a later one.
  bool isTheOne;
  /// 1 for that command, 2 for the next, ...
  std::uint64_t ordinal;
};

/// Falsifies the reply of a command that ran. A command without what the fault is about (a count, a name, ...) gets a
/// substitute when it is the very one: vcam/README.md lists both effects.
void Falsify(FaultKind kind, const FalsifiedCommand& about, wire::Reply& reply);

}  // namespace vcam

#endif  // KELVA_VCAM_FAULTS_FALSIFY_H_

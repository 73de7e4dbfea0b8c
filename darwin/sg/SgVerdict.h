#ifndef KELVA_DARWIN_SG_SG_VERDICT_H_
#define KELVA_DARWIN_SG_SG_VERDICT_H_

#include <cstdint>

#include "darwin/sg/SgCommand.h"

namespace darwin::sg {

/// What the caller of a user client is told: the call's return code, and the two fields of the result record.
struct Verdict {
  int returnCode = 0;
  std::uint32_t status = 0;
  std::uint32_t moved = 0;
};

/// The return code for a system call that failed with `error`.
int ReturnCodeOf(int error);

/// True when the device may have been unplugged, which the outcome alone does not tell.
bool MayBeGone(const SgOutcome& outcome);

/// Turns an outcome into a verdict. The host status comes first: after an unplug in the middle of a command the status
/// is good and the residual is 0, as if every byte had arrived. `gone`: the caller has looked for the device, and it
/// has gone.
Verdict Judge(const SgOutcome& outcome, std::uint32_t length, bool gone);

}  // namespace darwin::sg

#endif  // KELVA_DARWIN_SG_SG_VERDICT_H_

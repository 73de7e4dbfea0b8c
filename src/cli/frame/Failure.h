#ifndef KELVA_CLI_FRAME_FAILURE_H_
#define KELVA_CLI_FRAME_FAILURE_H_

#include <stdexcept>
#include <string>

#include "frame/ExitCode.h"

namespace kelva {

/// A failure of the tool itself: what was asked, what came back, what to do, in one sentence, and how the tool ends.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& sentence) : std::runtime_error(sentence), code_(code) {}
  ExitCode Code() const { return code_; }

 private:
  ExitCode code_;
};

/// The failure of a system call: `doing` is what was tried ("create /tmp/x"), the reason is errno's.
Failure SystemFailure(const std::string& doing, int error);

}  // namespace kelva

#endif  // KELVA_CLI_FRAME_FAILURE_H_

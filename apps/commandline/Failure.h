#ifndef KELVA_APPS_COMMANDLINE_FAILURE_H_
#define KELVA_APPS_COMMANDLINE_FAILURE_H_

#include <stdexcept>
#include <string>

#include "apps/commandline/ExitCode.h"

namespace apps {

/// A failure of the tool itself: what was asked, what came back, what to do, in one sentence, and how the tool ends.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& sentence, int systemError = 0)
      : std::runtime_error(sentence), code_(code), systemError_(systemError) {}
  ExitCode Code() const { return code_; }
  /// errno of the system call that failed; 0 for another failure.
  int SystemError() const { return systemError_; }

 private:
  ExitCode code_;
  int systemError_;
};

/// How a command ends and the sentence that says why.
struct Outcome {
  ExitCode code;
  std::string sentence;
};

/// The failure of a system call: `doing` is what was tried ("create /tmp/x"), the reason is errno's.
Failure SystemFailure(const std::string& doing, int error);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_FAILURE_H_

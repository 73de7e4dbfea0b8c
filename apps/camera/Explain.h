#ifndef KELVA_APPS_CAMERA_EXPLAIN_H_
#define KELVA_APPS_CAMERA_EXPLAIN_H_

#include <exception>
#include <string>

#include "apps/commandline/Failure.h"

namespace apps {

/// The outcome of any exception. `doing` is what was tried ("read I:\X.JPG"), for those that do not say it themselves.
Outcome Explain(const std::exception& error, const std::string& doing);

/// Whether a camera in this state would answer the next command no better, so that work on several files ends.
bool EndsAll(ExitCode code);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_EXPLAIN_H_

#ifndef KELVA_APPS_CAMERA_EXPLAIN_H_
#define KELVA_APPS_CAMERA_EXPLAIN_H_

#include <exception>
#include <string>

#include "apps/commandline/Failure.h"

namespace apps {

/// The outcome of any exception. `doing` is what was tried ("read I:\X.JPG"), for exceptions that do not say it.
Outcome Explain(const std::exception& error, const std::string& doing);

/// Whether work on several files should end here, because the next command would fail in the same way.
bool EndsAll(ExitCode code);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_EXPLAIN_H_

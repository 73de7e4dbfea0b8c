#ifndef KELVA_APPS_CAMERA_EXPLAIN_H_
#define KELVA_APPS_CAMERA_EXPLAIN_H_

#include <exception>
#include <string>

#include "apps/commandline/Context.h"
#include "apps/commandline/Failure.h"

namespace apps {

/// The outcome of any exception. `doing` is what was tried ("read I:/X.JPG"), for exceptions that do not say it. With
/// `codes` the sentence ends with the numbers of a refused command, in brackets.
Outcome Explain(const std::exception& error, const std::string& doing, bool codes = false);
/// The same for what a command was doing, with codes where they were asked for: --verbose, --json.
Outcome Explain(const std::exception& error, const Context& context);

/// Whether work on several files should end here, because the next command would fail in the same way.
bool EndsAll(ExitCode code);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_EXPLAIN_H_

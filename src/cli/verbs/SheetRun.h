#ifndef KELVA_CLI_VERBS_SHEET_RUN_H_
#define KELVA_CLI_VERBS_SHEET_RUN_H_

#include <string>

#include "frame/Context.h"

namespace kelva {

/// `kelva pictures --sheet PATH`: draws the camera's pictures into one HTML file.
ExitCode RunSheet(Context& context, const std::string& path);

}  // namespace kelva

#endif  // KELVA_CLI_VERBS_SHEET_RUN_H_

#ifndef KELVA_APPS_KELVA_VERBS_SHEET_RUN_H_
#define KELVA_APPS_KELVA_VERBS_SHEET_RUN_H_

#include <string>

#include "apps/commandline/Context.h"

namespace apps {

/// `kelva pictures --sheet PATH`: draws the camera's pictures into one HTML file.
ExitCode RunSheet(Context& context, const std::string& path);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_SHEET_RUN_H_

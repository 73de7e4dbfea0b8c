#ifndef KELVA_APPS_TOOL_TOOL_H_
#define KELVA_APPS_TOOL_TOOL_H_

#include <span>

#include "apps/commandline/Program.h"

namespace apps {

/// A whole program whose verbs use cameras: reads the command line, runs its verb under supervision, and returns the exit
/// status. The program's options are those of `kelva`.
int RunTool(const Program& verbs, std::span<const char* const> arguments);

}  // namespace apps

#endif  // KELVA_APPS_TOOL_TOOL_H_

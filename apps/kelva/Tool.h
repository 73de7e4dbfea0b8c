#ifndef KELVA_APPS_KELVA_TOOL_H_
#define KELVA_APPS_KELVA_TOOL_H_

#include <span>

namespace apps {

/// The whole tool: reads the command line, runs its verb under supervision, and returns the exit status.
int RunTool(std::span<const char* const> arguments);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_TOOL_H_

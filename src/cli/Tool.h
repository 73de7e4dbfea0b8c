#ifndef KELVA_CLI_TOOL_H_
#define KELVA_CLI_TOOL_H_

#include <span>

namespace kelva {

/// The whole tool: reads the command line, runs its verb under supervision, and returns the exit status.
int RunTool(std::span<const char* const> arguments);

}  // namespace kelva

#endif  // KELVA_CLI_TOOL_H_

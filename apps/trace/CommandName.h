#ifndef KELVA_APPS_TRACE_COMMAND_NAME_H_
#define KELVA_APPS_TRACE_COMMAND_NAME_H_

#include <string_view>

#include "src/wifi/VscCdb.h"

namespace apps {

/// What a command block asks for, in words that never change: "read chunk". "unknown" for a code of no command.
std::string_view CommandName(const _VscCdb& block);

}  // namespace apps

#endif  // KELVA_APPS_TRACE_COMMAND_NAME_H_

#ifndef KELVA_APPS_TOOL_HAND_OVER_H_
#define KELVA_APPS_TOOL_HAND_OVER_H_

#include <span>
#include <string>

#include "apps/commandline/Program.h"

namespace apps {

/// For a command line that names a virtual bus. Where `kelva` knows the cameras of this machine alone, kelva-virtual takes
/// this process over with the same arguments, and this returns only when that fails, with the reason in a sentence. Where one
/// program knows both, it returns an empty text at once. `output` is the real standard output. Other programs likewise.
std::string HandOver(const Program& of, std::span<const char* const> arguments, int output);

}  // namespace apps

#endif  // KELVA_APPS_TOOL_HAND_OVER_H_

#ifndef KELVA_APPS_COMMANDLINE_BECOME_H_
#define KELVA_APPS_COMMANDLINE_BECOME_H_

#include <span>
#include <string>
#include <string_view>

namespace apps {

/// Another program of this project (ProgramBeside) takes this process over, with these arguments, `calledBy` as its own name
/// and `output` as its standard output, unless that is -1. Returns only when that fails, with the start of a sentence: "Cannot
/// run /usr/libexec/kelva/x: No such file or directory".
std::string Become(std::string_view program, std::string_view calledBy, std::span<const char* const> arguments,
                   int output);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_BECOME_H_

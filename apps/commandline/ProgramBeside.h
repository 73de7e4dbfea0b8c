#ifndef KELVA_APPS_COMMANDLINE_PROGRAM_BESIDE_H_
#define KELVA_APPS_COMMANDLINE_PROGRAM_BESIDE_H_

#include <string>

namespace apps {

/// The path of another program of this project, `name`, for a program with the path `program`: in the same folder or that of
/// the build, otherwise where the installation puts it, whether or not it is there. `program` may be that of a macOS bundle.
std::string ProgramBeside(const std::string& program, const std::string& name);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_PROGRAM_BESIDE_H_

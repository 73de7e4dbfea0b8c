// Finds the programs that another one starts.
#include "apps/commandline/ProgramBeside.h"

#include <unistd.h>

namespace apps {

std::string ProgramBeside(const std::string& program, const std::string& name) {
  std::string folder = program.substr(0, program.find_last_of('/') + 1);
  // A bundle lies beside the folder of programs, in a build among them.
  if (folder.ends_with("/Contents/MacOS/")) folder += "../../../";
  // The tests of the build lie in a folder beside that of the programs.
  for (const char* place : {"", "../bin/"}) {
    std::string path = folder + place + name;
    if (::access(path.c_str(), X_OK) == 0) return path;
  }
  return folder + KELVA_LIBEXEC_FROM_PROGRAM + name;
}

}  // namespace apps

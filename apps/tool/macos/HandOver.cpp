// Has kelva-virtual do what is asked of virtual cameras.
#include "apps/tool/HandOver.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "apps/commandline/Printable.h"
#include "apps/commandline/ProgramBeside.h"
#include "platform/Process.h"

namespace apps {

std::string HandOver(const Program& of, std::span<const char* const> arguments, int output) {
  const std::string program = ProgramBeside(platform::OwnProgram(), std::string(of.name) + "-virtual");
  std::string name(of.name);
  std::vector<char*> words = {name.data()};
  for (const char* argument : arguments) words.push_back(const_cast<char*>(argument));  // execv changes none of them
  words.push_back(nullptr);
  if (output >= 0) ::dup2(output, STDOUT_FILENO);
  ::execv(program.c_str(), words.data());
  return "Cannot run " + Printable(program) + ", which knows virtual cameras: " + std::strerror(errno) +
         "; install kelva again.";
}

}  // namespace apps

// Hands this process over to another program of this project.
#include "apps/commandline/Become.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "apps/commandline/Printable.h"
#include "apps/commandline/ProgramBeside.h"
#include "platform/Process.h"

namespace apps {

std::string Become(std::string_view program, std::string_view calledBy, std::span<const char* const> arguments,
                   int output) {
  const std::string path = ProgramBeside(platform::OwnProgram(), std::string(program));
  std::string name(calledBy);
  std::vector<char*> words = {name.data()};
  for (const char* argument : arguments) words.push_back(const_cast<char*>(argument));  // execv changes none of them
  words.push_back(nullptr);
  if (output >= 0) ::dup2(output, STDOUT_FILENO);
  ::execv(path.c_str(), words.data());
  return "Cannot run " + Printable(path) + ": " + std::strerror(errno);
}

}  // namespace apps

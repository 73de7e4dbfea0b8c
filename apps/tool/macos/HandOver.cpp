// Has kelva-virtual do what is asked of virtual cameras.
#include "apps/tool/HandOver.h"

#include "apps/commandline/Become.h"

namespace apps {

std::string HandOver(const Program& of, std::span<const char* const> arguments, int output) {
  return Become(std::string(of.name) + "-virtual", of.name, arguments, output) + "; install kelva again.";
}

}  // namespace apps

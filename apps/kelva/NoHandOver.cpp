// In a program that knows virtual cameras itself.
#include "apps/kelva/HandOver.h"

namespace apps {

std::string HandOver(std::span<const char* const>, int) {
  return {};
}

}  // namespace apps

// The processors of a thread, on macOS, which leaves no choice to programs.
#include "platform/Processors.h"

namespace platform {

std::vector<int> Processors() {
  return {};
}

bool UseOnly(const std::vector<int>&) {
  return false;
}

int CurrentProcessor() {
  return -1;
}

}  // namespace platform

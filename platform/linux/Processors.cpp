// The processors of a thread, on Linux.
#include "platform/Processors.h"

#include <sched.h>

namespace platform {

std::vector<int> Processors() {
  cpu_set_t set;
  std::vector<int> processors;
  // Fails on a machine of more than CPU_SETSIZE (1,024) processors.
  if (::sched_getaffinity(0, sizeof set, &set) != 0) return processors;
  for (std::size_t number = 0; number < CPU_SETSIZE; ++number) {
    if (CPU_ISSET(number, &set)) processors.push_back(static_cast<int>(number));
  }
  return processors;
}

bool UseOnly(const std::vector<int>& processors) {
  cpu_set_t set;
  CPU_ZERO(&set);
  for (const int number : processors) CPU_SET(static_cast<std::size_t>(number), &set);
  return ::sched_setaffinity(0, sizeof set, &set) == 0;
}

int CurrentProcessor() {
  return ::sched_getcpu();
}

}  // namespace platform

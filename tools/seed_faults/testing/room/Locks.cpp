// Places for faults in what the standard library is asked.
#include <algorithm>
#include <mutex>

#include "Toy.h"

namespace toy {

int Lower(int first, int second) {
  return std::min(first, second);
}

void NoteLocked(Recorder& recorder) {
  const std::lock_guard lock(recorder);
}

}  // namespace toy

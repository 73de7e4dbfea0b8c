// Ends the process. A file of its own, so that a fuzzer can link another ending.

#include "FatalAssertion.h"

#include <cstdio>
#include <cstdlib>

namespace kelva {

void FailAssertion(const char* expression, const char* function) {
  std::fprintf(stderr, "Assertion failed: (%s), function %s.\n", expression, function);
  std::abort();
}

}  // namespace kelva

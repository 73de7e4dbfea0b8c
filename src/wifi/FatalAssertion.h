#ifndef KELVA_FATAL_ASSERTION_H_
#define KELVA_FATAL_ASSERTION_H_

namespace vsc {

/// Prints "Assertion failed: (expression), function name." to standard error and stops the process, in every build.
[[noreturn]] void FailAssertion(const char* expression, const char* function);

}  // namespace vsc

#endif  // KELVA_FATAL_ASSERTION_H_

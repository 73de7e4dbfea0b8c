#ifndef KELVA_WIFI_FATAL_ASSERTION_H_
#define KELVA_WIFI_FATAL_ASSERTION_H_

namespace kelva {

/// Prints "Assertion failed: (expression), function name." to standard error and stops the process, in every build.
[[noreturn]] void FailAssertion(const char* expression, const char* function);

}  // namespace kelva

#endif  // KELVA_WIFI_FATAL_ASSERTION_H_

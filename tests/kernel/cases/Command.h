#ifndef KELVA_TESTS_KERNEL_CASES_COMMAND_H_
#define KELVA_TESTS_KERNEL_CASES_COMMAND_H_

#include <string>
#include <vector>

/// What a program did.
struct Outcome {
  /// Everything it printed, on either stream.
  std::string output;
  /// Its exit code; negative for the signal that ended it.
  int code = 0;

  /// The last line of the output.
  std::string LastLine() const;
  bool Aborted() const { return code == -6; }
};

/// Runs a program to its end. It is killed after this many seconds of the guest, which shows as code -9.
Outcome RunProgram(const std::vector<std::string>& arguments, unsigned seconds = 600);

#endif  // KELVA_TESTS_KERNEL_CASES_COMMAND_H_

#ifndef KELVA_TESTS_KERNEL_CASES_TAP_H_
#define KELVA_TESTS_KERNEL_CASES_TAP_H_

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace tap {

/// A case passes unless it throws. A crash or a case that does not end takes only itself down.
struct Case {
  std::string name;
  std::function<void()> run;
};

/// Throws with `what` unless `kept`.
void Check(bool kept, const std::string& what);
/// A line that is shown with the verdict of the case.
void Note(const std::string& text);

/// Runs every case in a process of its own and prints TAP, the plan last. The exit code says whether all passed.
int RunAll(std::span<const Case> cases);

}  // namespace tap

#endif  // KELVA_TESTS_KERNEL_CASES_TAP_H_

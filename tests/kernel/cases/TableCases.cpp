#include <algorithm>
#include <sstream>

#include "tests/kernel/cases/Cases.h"
#include "tests/kernel/cases/Command.h"
#include "vcam/faults/Fault.h"

// The tables of every fault at every command, and at every command of a reading (tests/doors), through the real kernel: one
// case for each fault.

namespace {

// Each silent command takes the time that the library allows it.
constexpr unsigned kSeconds = 14'000;

void TryFault(const std::string& fault) {
  std::string name = fault;
  std::replace(name.begin(), name.end(), '-', '_');
  const Outcome outcome = RunProgram({"kelva-kernel-table", "--gtest_filter=*/Kernel_" + name}, kSeconds);
  const bool ran = outcome.output.find("[  PASSED  ] 2 tests.") != std::string::npos;
  if (outcome.code == 0 && ran) return;
  std::istringstream lines(outcome.output);
  for (std::string line; std::getline(lines, line);) tap::Note(line);
  tap::Check(false, "the table was not kept (code " + std::to_string(outcome.code) + ")");
}

}  // namespace

std::vector<tap::Case> TableCases() {
  std::vector<tap::Case> cases;
  for (const vcam::FaultKind kind : vcam::AllFaults()) {
    const std::string fault(vcam::NameOf(kind));
    cases.push_back({"the fault " + fault + " at every command", [=] { TryFault(fault); }});
  }
  return cases;
}

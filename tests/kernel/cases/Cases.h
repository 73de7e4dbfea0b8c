#ifndef KELVA_TESTS_KERNEL_CASES_CASES_H_
#define KELVA_TESTS_KERNEL_CASES_CASES_H_

#include <vector>

#include "tests/kernel/cases/Tap.h"

// The suites of cases; each boot of the guest runs some of them.

std::vector<tap::Case> FaultCases();
/// `cycles` counts how often the cable is pulled at a random byte.
std::vector<tap::Case> UnplugCases(int cycles);
std::vector<tap::Case> ClientCases();
std::vector<tap::Case> SpeedCases();
std::vector<tap::Case> AgentCases();
std::vector<tap::Case> ToolCases();
std::vector<tap::Case> VerbCases();
std::vector<tap::Case> MountCases();
std::vector<tap::Case> TableCases();
/// What the quick set of tests boots the guest for.
std::vector<tap::Case> ShortCases();

#endif  // KELVA_TESTS_KERNEL_CASES_CASES_H_

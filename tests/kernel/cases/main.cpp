#include <iostream>
#include <span>
#include <string>
#include <string_view>

#include "tests/kernel/cases/Cases.h"

namespace {

constexpr int kCyclesOfARun = 30;
constexpr std::string_view kCycles = "--cycles=";

std::vector<tap::Case> CasesOf(std::string_view suite, int cycles) {
  if (suite == "faults") return FaultCases();
  if (suite == "unplug") return UnplugCases(cycles);
  if (suite == "clients") return ClientCases();
  if (suite == "speed") return SpeedCases();
  if (suite == "agent") return AgentCases();
  if (suite == "tool") return ToolCases();
  if (suite == "verbs") return VerbCases();
  if (suite == "mount") return MountCases();
  if (suite == "table") return TableCases();
  if (suite == "short") return ShortCases();
  return {};
}

std::vector<tap::Case> Chosen(std::span<char*> words) {
  int cycles = kCyclesOfARun;
  std::vector<tap::Case> cases;
  for (const std::string_view word : words) {
    if (word.starts_with(kCycles)) cycles = std::stoi(std::string(word.substr(kCycles.size())));
    const auto more = CasesOf(word, cycles);
    cases.insert(cases.end(), more.begin(), more.end());
  }
  return cases;
}

}  // namespace

int main(int argc, char** argv) {
  const auto cases = Chosen(std::span(argv, static_cast<std::size_t>(argc)).subspan(1));
  if (cases.empty()) {
    std::cerr << "usage: kelva-kernel-cases [--cycles=N] "
                 "faults|unplug|clients|speed|agent|tool|verbs|mount|table|short ...\n";
    return 2;
  }
  return tap::RunAll(cases);
}

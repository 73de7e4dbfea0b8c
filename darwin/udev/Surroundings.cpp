// The clock, the permission of nodes and the journal, which tests replace.

#include "darwin/udev/Surroundings.h"

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <thread>

namespace darwin::udev {

std::int64_t ProcessSurroundings::NowMs() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

void ProcessSurroundings::SleepMs(int milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

int ProcessSurroundings::WhyNotUsable(const std::string& node) {
  return ::access(node.c_str(), R_OK | W_OK) == 0 ? 0 : errno;
}

void ProcessSurroundings::Report(const std::string& sentence) {
  if (report_) return report_(sentence);
  std::fprintf(stderr, "kelva: %s\n", sentence.c_str());
}

}  // namespace darwin::udev

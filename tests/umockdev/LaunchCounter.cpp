// Stands in for the opener of the desktop application: says when it started to run, and ends. Static, so that what is
// measured is the way to it and not the loading of libraries.
#include <fcntl.h>
#include <time.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

int main() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  const std::int64_t nanoseconds = std::int64_t{now.tv_sec} * 1000000000 + now.tv_nsec;
  const char* pipe = std::getenv("KELVA_LAUNCH_PIPE");
  const int descriptor = pipe ? ::open(pipe, O_WRONLY | O_CLOEXEC) : -1;
  return ::write(descriptor, &nanoseconds, sizeof nanoseconds) == sizeof nanoseconds ? 0 : 1;
}

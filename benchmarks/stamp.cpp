// Stands in for the desktop application in a measurement: writes the moment of its start into the pipe it is given.
#include <fcntl.h>
#include <unistd.h>

#include "benchmarks/Processes.h"

int main(int argc, char** argv) {
  const std::int64_t now = bench::Now();
  const int pipe = argc >= 2 ? open(argv[1], O_WRONLY | O_CLOEXEC) : -1;
  return write(pipe, &now, sizeof now) == sizeof now ? 0 : 1;
}

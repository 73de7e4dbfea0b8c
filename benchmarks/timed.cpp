// Starts a command as often as asked, and prints for each run its nanoseconds, its largest resident kilobytes, its
// processor's microseconds (its children's included in both) and its exit status. Small itself, because a child's peak begins with that of its parent.
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "benchmarks/Processes.h"

extern char** environ;

namespace {

// The next start finds nothing of the program in the page cache, as the first one of a day.
void Forget(const char* program) {
  const int file = open(program, O_RDONLY | O_CLOEXEC);
  posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
  close(file);
}

long long Microseconds(const timeval& time) {
  return static_cast<long long>(time.tv_sec) * 1'000'000 + time.tv_usec;
}

int Run(char** command) {
  posix_spawn_file_actions_t quiet;
  posix_spawn_file_actions_init(&quiet);
  posix_spawn_file_actions_addopen(&quiet, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  const std::int64_t start = bench::Now();
  pid_t child = 0;
  if (posix_spawnp(&child, command[0], &quiet, nullptr, command, environ) != 0) return 1;
  int status = 0;
  rusage used{};
  wait4(child, &status, 0, &used);
  const std::int64_t end = bench::Now();
  posix_spawn_file_actions_destroy(&quiet);
  std::printf("%lld %ld %lld %d\n", static_cast<long long>(end - start), used.ru_maxrss,
              Microseconds(used.ru_utime) + Microseconds(used.ru_stime), WIFEXITED(status) ? WEXITSTATUS(status) : 128);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fputs("Usage: bench-timed RUNS warm|cold PROGRAM [WORD...]\n", stderr);
    return 2;
  }
  const bool cold = argv[2][0] == 'c';
  for (int runs = std::atoi(argv[1]); runs > 0; --runs) {
    if (cold) Forget(argv[3]);
    if (Run(argv + 3) != 0) return 1;
  }
  return 0;
}

#ifndef KELVA_BASE_TESTING_NO_FREE_DESCRIPTOR_H_
#define KELVA_BASE_TESTING_NO_FREE_DESCRIPTOR_H_

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <ctime>

namespace base::test {

/// While it lives, this process can open no descriptor, or only the few that are given.
class NoFreeDescriptor {
 public:
  explicit NoFreeDescriptor(rlim_t free = 0) {
    const int lowest = ::fcntl(0, F_DUPFD_CLOEXEC, 0);
    ::close(lowest);
    ::getrlimit(RLIMIT_NOFILE, &before_);
    const rlimit limit{static_cast<rlim_t>(lowest) + free, before_.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &limit);
  }
  ~NoFreeDescriptor() { ::setrlimit(RLIMIT_NOFILE, &before_); }
  NoFreeDescriptor(const NoFreeDescriptor&) = delete;
  NoFreeDescriptor& operator=(const NoFreeDescriptor&) = delete;

 private:
  rlimit before_{};
};

inline std::chrono::nanoseconds ProcessorTime() {
  timespec now{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

/// What all threads of this process use until the descriptor is readable, at most for so long.
inline std::chrono::nanoseconds ProcessorTimeUntilReadable(int descriptor, std::chrono::milliseconds atMost) {
  const auto before = ProcessorTime();
  pollfd wait{descriptor, POLLIN, 0};
  ::poll(&wait, 1, static_cast<int>(atMost.count()));
  return ProcessorTime() - before;
}

}  // namespace base::test

#endif  // KELVA_BASE_TESTING_NO_FREE_DESCRIPTOR_H_

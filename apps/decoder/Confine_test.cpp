#include "apps/decoder/Confine.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "apps/decoder/Drawing.h"
#include "apps/decoder/testing/TinyJpeg.h"

namespace apps {
namespace {

/// Ends with 0 when a confined process could do the work.
void DoConfined(const std::function<bool()>& work) {
  if (!Confine()) ::_exit(2);
  ::_exit(work() ? 0 : 1);
}

/// As a container does that forbids a call.
void Forbid(long call) {
  std::array<sock_filter, 4> steps{{{BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, nr)},
                                    {BPF_JMP | BPF_JEQ | BPF_K, 0, 1, static_cast<unsigned>(call)},
                                    {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ERRNO | EPERM},
                                    {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ALLOW}}};
  const sock_fprog program{steps.size(), steps.data()};
  ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
  if (::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) ::_exit(3);
}

TEST(ConfineTest, AConfinedProcessDrawsPictures) {
  const std::string picture = TinyJpeg::File(100, std::vector<int>(5000, 90), TinyJpeg::ExifPart(6));
  const std::string damaged = picture.substr(0, picture.size() / 2);
  EXPECT_EXIT(DoConfined([&] {
                return std::get<Drawing>(Draw(picture)).time.has_value() &&
                       !std::get<Drawing>(Draw(damaged)).complaint.empty() &&
                       !std::get<std::string>(Draw(std::string("no picture"))).empty();
              }),
              ::testing::ExitedWithCode(0), "");
}

TEST(ConfineTest, AConfinedProcessReachesNothingElse) {
  const std::vector<std::function<void()>> deeds = {
      [] { ::open("/etc/passwd", O_RDONLY); },
      [] { ::socket(AF_INET, SOCK_STREAM, 0); },
      [] { ::fork(); },
      [] { ::execl("/bin/true", "true", nullptr); },
      [] { ::unlink("/nonexistent"); },
      [] { ::kill(1, 0); },
      [] { ::syscall(SYS_openat, AT_FDCWD, "/etc/passwd", O_RDONLY); },
      [] { ::syscall(SYS_ptrace, 0, 0, 0, 0); },
      [] { ::connect(0, nullptr, 0); },
      [] { ::rename("/nonexistent", "/nonexistent2"); },
      [] { ::syscall(SYS_io_uring_setup, 1, nullptr); },
      [] { ::mprotect(nullptr, 4096, PROT_READ | PROT_EXEC); },
      [] { ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0); }};
  for (const auto& deed : deeds) {
    EXPECT_EXIT(DoConfined([&] {
                  deed();
                  return true;
                }),
                ::testing::KilledBySignal(SIGSYS), "");
  }
}

// What a C library may do tomorrow: it is told that the kernel has no such call, and the process goes on.
TEST(ConfineTest, AHarmlessCallThatIsNotKnownIsRefusedAndPicturesAreStillDrawn) {
  const std::string picture = TinyJpeg::File(1, {90});
  constexpr int kNoSuchCall = 100'000;
  for (const int call : {SYS_getppid, SYS_sched_yield, SYS_clock_gettime, SYS_prctl, SYS_clone3, kNoSuchCall}) {
    EXPECT_EXIT(DoConfined([&] {
                  return ::syscall(call, 0, 0, 0) == -1 && errno == ENOSYS &&
                         std::holds_alternative<Drawing>(Draw(picture));
                }),
                ::testing::ExitedWithCode(0), "")
        << call;
  }
}

TEST(ConfineTest, ASystemThatForbidsTheFilterIsNoticed) {
  EXPECT_EXIT(
      {
        Forbid(SYS_prctl);
        ::_exit(Confine() ? 1 : 0);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST(ConfineTest, AConfinedProcessHasBoundsOfMemory) {
  EXPECT_EXIT(DoConfined([] {
                return ::mmap(nullptr, std::size_t{2} << 30, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) ==
                       MAP_FAILED;
              }),
              ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace apps

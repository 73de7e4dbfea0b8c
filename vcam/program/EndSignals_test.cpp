#include "vcam/program/EndSignals.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <thread>

namespace vcam::program {
namespace {

bool IsReadable(const EndSignals& signals, int timeoutMs) {
  pollfd wait{signals.Descriptor(), POLLIN, 0};
  return ::poll(&wait, 1, timeoutMs) == 1;
}

bool IsPending(int signal) {
  sigset_t pending;
  ::sigpending(&pending);
  return sigismember(&pending, signal) == 1;
}

constexpr int kPatienceMs = 10'000;

TEST(EndSignals, StaysReadableOnceTheProcessIsAskedToEnd) {
  for (const int signal : {SIGTERM, SIGINT}) {
    const EndSignals signals;
    EXPECT_FALSE(IsReadable(signals, 0));
    ::kill(::getpid(), signal);
    EXPECT_TRUE(IsReadable(signals, kPatienceMs)) << signal;
    EXPECT_TRUE(IsReadable(signals, 0)) << signal;
  }
}

TEST(EndSignals, TakesManySignals) {
  const EndSignals signals;
  for (int i = 0; i < 1000; ++i) ::kill(::getpid(), SIGINT);
  EXPECT_TRUE(IsReadable(signals, kPatienceMs));
  // The last one is not for the next test.
  while (IsPending(SIGINT)) std::this_thread::yield();
}

TEST(EndSignals, EndsWithoutASignal) {
  for (int i = 0; i < 100; ++i) EXPECT_FALSE(IsReadable(EndSignals(), 0));
}

TEST(EndSignals, OutputThatNobodyReadsIsAnError) {
  const EndSignals signals;
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  ::close(ends[0]);
  EXPECT_EQ(::write(ends[1], "x", 1), -1);
  EXPECT_EQ(errno, EPIPE);
  ::close(ends[1]);
}

}  // namespace
}  // namespace vcam::program

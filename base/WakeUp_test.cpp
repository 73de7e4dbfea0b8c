#include "base/WakeUp.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <thread>

#include "base/testing/NoFreeDescriptor.h"

namespace base {
namespace {

bool IsReadable(const WakeUp& wakeUp) {
  pollfd wait{wakeUp.Descriptor(), POLLIN, 0};
  return ::poll(&wait, 1, 0) == 1;
}

TEST(WakeUp, IsReadableFromTheSignalUntilItIsCleared) {
  WakeUp wakeUp;
  EXPECT_FALSE(IsReadable(wakeUp));
  wakeUp.Signal();
  EXPECT_TRUE(IsReadable(wakeUp));
  EXPECT_TRUE(IsReadable(wakeUp));
  wakeUp.Clear();
  EXPECT_FALSE(IsReadable(wakeUp));
}

TEST(WakeUp, OneClearingTakesAllSignals) {
  for (const int signals : {1, 63, 64, 65, 128, 200'000}) {
    WakeUp wakeUp;
    for (int i = 0; i < signals; ++i) wakeUp.Signal();
    EXPECT_TRUE(IsReadable(wakeUp)) << signals;
    wakeUp.Clear();
    EXPECT_FALSE(IsReadable(wakeUp)) << signals;
  }
}

TEST(WakeUp, ClearingWithoutASignalDoesNotWait) {
  WakeUp wakeUp;
  wakeUp.Clear();
  EXPECT_FALSE(IsReadable(wakeUp));
}

TEST(WakeUp, EndsTheWaitOfAnotherThread) {
  WakeUp wakeUp;
  std::thread waiting([&] {
    pollfd wait{wakeUp.Descriptor(), POLLIN, 0};
    EXPECT_EQ(::poll(&wait, 1, -1), 1);
  });
  wakeUp.Signal();
  waiting.join();
}

TEST(WakeUp, KeepsErrno) {
  WakeUp wakeUp;
  errno = ENOTTY;
  wakeUp.Signal();
  wakeUp.Clear();
  wakeUp.Clear();
  EXPECT_EQ(errno, ENOTTY);
}

TEST(WakeUp, IsHandedToNoProgram) {
  const WakeUp wakeUp;
  EXPECT_EQ(::fcntl(wakeUp.Descriptor(), F_GETFD), FD_CLOEXEC);
}

#ifndef __SANITIZE_ADDRESS__  // The sanitizer needs a pipe itself to look at an exception that is thrown.
TEST(WakeUp, SaysThatTheSystemHasNoDescriptorLeft) {
  const test::NoFreeDescriptor none(1);
  EXPECT_THROW(WakeUp(), std::system_error);
}
#endif

}  // namespace
}  // namespace base

#include "base/SignalPipe.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <csignal>
#include <thread>

#include "base/testing/NoFreeDescriptor.h"

namespace base {
namespace {

constexpr std::array kSignals{SIGUSR1, SIGUSR2};

class SignalPipeTest : public testing::Test {
 protected:
  SignalPipeTest() {
    const sigset_t set = SetOf(kSignals);
    ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
  }
};

bool IsReadable(const SignalPipe& pipe) {
  pollfd ready{pipe.Descriptor(), POLLIN, 0};
  return ::poll(&ready, 1, 0) == 1;
}

TEST_F(SignalPipeTest, SignalsComeOutInTheirOrder) {
  const SignalPipe pipe(kSignals);
  const SignalPipe::Listening listening(pipe);
  EXPECT_FALSE(IsReadable(pipe));
  EXPECT_EQ(pipe.Next(), 0);
  ::kill(::getpid(), SIGUSR2);
  ::kill(::getpid(), SIGUSR1);
  EXPECT_TRUE(IsReadable(pipe));
  EXPECT_EQ(pipe.Next(), SIGUSR2);
  EXPECT_EQ(pipe.Next(), SIGUSR1);
  EXPECT_EQ(pipe.Next(), 0);
}

TEST_F(SignalPipeTest, WhatCameBeforeAnybodyListenedWaits) {
  ::kill(::getpid(), SIGUSR1);
  const SignalPipe pipe(kSignals);
  EXPECT_FALSE(IsReadable(pipe));
  const SignalPipe::Listening listening(pipe);
  EXPECT_EQ(pipe.Next(), SIGUSR1);
}

TEST_F(SignalPipeTest, ASignalEndsAPollThatWaits) {
  const SignalPipe pipe(kSignals);
  std::thread other([] { ::kill(::getpid(), SIGUSR1); });
  const SignalPipe::Listening listening(pipe);
  pollfd ready{pipe.Descriptor(), POLLIN, 0};
  while (::poll(&ready, 1, -1) < 0) EXPECT_EQ(errno, EINTR);
  other.join();
  EXPECT_EQ(pipe.Next(), SIGUSR1);
}

TEST_F(SignalPipeTest, ItsEndLeavesEverythingAsItWas) {
  std::signal(SIGUSR1, SIG_IGN);
  {
    const SignalPipe pipe(kSignals);
    const SignalPipe::Listening listening(pipe);
  }
  struct sigaction action {};
  ::sigaction(SIGUSR1, nullptr, &action);
  EXPECT_EQ(action.sa_handler, SIG_IGN);
  sigset_t mask;
  ::pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  EXPECT_EQ(sigismember(&mask, SIGUSR1), 1);
}

TEST_F(SignalPipeTest, ASystemWithoutAFreeDescriptorIsNoticed) {
  const test::NoFreeDescriptor none;
  const SignalPipe pipe(kSignals);
  EXPECT_FALSE(pipe);
  EXPECT_EQ(errno, EMFILE);
}

}  // namespace
}  // namespace base

#include "platform/Sockets.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <string>

#include "base/FileDescriptor.h"
#include "base/testing/ScratchFolder.h"

namespace platform {
namespace {

bool IsClosedOnExec(int descriptor) {
  return ::fcntl(descriptor, F_GETFD) == FD_CLOEXEC;
}

bool IsNonBlocking(int descriptor) {
  return (::fcntl(descriptor, F_GETFL) & O_NONBLOCK) != 0;
}

struct Two {
  explicit Two(int (*make)(std::array<int, 2>&)) {
    std::array<int, 2> ends{-1, -1};
    made = make(ends) == 0;
    first.Reset(ends[0]);
    second.Reset(ends[1]);
  }
  bool made = false;
  base::FileDescriptor first;
  base::FileDescriptor second;
};

TEST(SocketsTest, NoOtherProgramInheritsAnEnd) {
  for (const auto& make : {Pipe, SocketPair}) {
    const Two ends(make);
    ASSERT_TRUE(ends.made);
    EXPECT_TRUE(IsClosedOnExec(ends.first.Get()) && IsClosedOnExec(ends.second.Get()));
  }
  const base::FileDescriptor socket(LocalSocket());
  EXPECT_TRUE(socket && IsClosedOnExec(socket.Get()));
}

TEST(SocketsTest, WhatIsWrittenAtOneEndComesOutOfTheOther) {
  const Two ends(Pipe);
  ASSERT_EQ(::write(ends.second.Get(), "x", 1), 1);
  char byte = 0;
  EXPECT_EQ(::read(ends.first.Get(), &byte, 1), 1);
  EXPECT_EQ(byte, 'x');
}

TEST(SocketsTest, ReadingWithoutWaitingFailsWhereThereIsNothing) {
  const Two ends(Pipe);
  ASSERT_EQ(SetNonBlocking(ends.first.Get()), 0);
  char byte = 0;
  EXPECT_EQ(::read(ends.first.Get(), &byte, 1), -1);
  EXPECT_EQ(errno, EAGAIN);
  EXPECT_EQ(SetNonBlocking(-1), -1);
}

TEST(SocketsTest, APeerThatHasGoneIsAnErrorAndNoSignal) {
  std::signal(SIGPIPE, SIG_DFL);
  Two ends(SocketPair);
  ends.second.Reset();
  EXPECT_EQ(Send(ends.first.Get(), "x", 1, 0), -1);
  EXPECT_EQ(errno, EPIPE);
  EXPECT_EQ(SendMessage(ends.first.Get(), msghdr{}, 0), -1);
  EXPECT_EQ(errno, EPIPE);
}

TEST(SocketsTest, AnAcceptedConnectionDoesNotWaitAndKnowsItsPeer) {
  const base::ScratchFolder scratch;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strcpy(address.sun_path, (scratch.Path() / "s").c_str());
  const auto* generic = reinterpret_cast<const sockaddr*>(&address);
  const base::FileDescriptor listener(LocalSocket());
  ASSERT_EQ(::bind(listener.Get(), generic, sizeof address), 0);
  ASSERT_EQ(::listen(listener.Get(), 1), 0);
  const base::FileDescriptor near(LocalSocket());
  ASSERT_EQ(::connect(near.Get(), generic, sizeof address), 0);
  const base::FileDescriptor far(Accept(listener.Get()));
  ASSERT_TRUE(far);
  EXPECT_TRUE(IsClosedOnExec(far.Get()) && IsNonBlocking(far.Get()));
  EXPECT_EQ(PeerProcess(far.Get()), ::getpid());
  EXPECT_EQ(PeerProcess(-1), 0);
}

TEST(SocketsTest, WhatCannotBeMadeIsAnError) {
  EXPECT_EQ(Accept(-1), -1);
  EXPECT_EQ(errno, EBADF);
}

}  // namespace
}  // namespace platform

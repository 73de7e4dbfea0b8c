#include "darwin/sg/SgSystem.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <fstream>

#include "base/FileDescriptor.h"
#include "base/testing/ScratchFolder.h"

namespace darwin::sg {
namespace {

class SgSystemTest : public testing::Test {
 protected:
  SgSystemTest() { std::ofstream(path_) << "12345678"; }

  const base::ScratchFolder scratch_;
  const std::string path_ = (scratch_.Path() / "node").string();
  SgSystem& system_ = SgSystem::Kernel();
};

TEST_F(SgSystemTest, ANodeIsOpenedToReadAndWriteWithoutWaitingAndNotForPrograms) {
  const int node = system_.Open(path_.c_str());
  ASSERT_GE(node, 0);
  EXPECT_EQ(::fcntl(node, F_GETFD), FD_CLOEXEC);
  EXPECT_EQ(::fcntl(node, F_GETFL) & (O_ACCMODE | O_NONBLOCK), O_RDWR | O_NONBLOCK);
  system_.Close(node);
  EXPECT_EQ(::fcntl(node, F_GETFD), -1);
}

TEST_F(SgSystemTest, WhatIsNotThereIsAnError) {
  EXPECT_EQ(system_.Open((path_ + "x").c_str()), -1);
  EXPECT_EQ(errno, ENOENT);
}

TEST_F(SgSystemTest, TheLockIsOneHoldersAndNobodyWaitsForIt) {
  const base::FileDescriptor holder(system_.Open(path_.c_str()));
  const base::FileDescriptor other(system_.Open(path_.c_str()));
  EXPECT_EQ(system_.Lock(holder.Get()), 0);
  EXPECT_EQ(system_.Lock(other.Get()), -1);
  EXPECT_EQ(errno, EWOULDBLOCK);
}

TEST_F(SgSystemTest, WhatIsMappedShowsWhatTheOtherSideWrites) {
  const base::FileDescriptor node(system_.Open(path_.c_str()));
  void* mapped = system_.Map(node.Get(), 8);
  ASSERT_NE(mapped, nullptr);
  EXPECT_EQ(std::string(static_cast<const char*>(mapped), 8), "12345678");
  ASSERT_EQ(::pwrite(node.Get(), "abcd", 4, 0), 4);
  EXPECT_EQ(std::string(static_cast<const char*>(mapped), 8), "abcd5678");
  system_.Unmap(mapped, 8);
}

TEST_F(SgSystemTest, WhatCannotBeMappedIsNull) {
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
  const base::FileDescriptor reading(ends[0]);
  const base::FileDescriptor writing(ends[1]);
  EXPECT_EQ(system_.Map(reading.Get(), 8), nullptr);
}

TEST_F(SgSystemTest, AHangUpIsAwaitedNoLongerThanAsked) {
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
  const base::FileDescriptor reading(ends[0]);
  base::FileDescriptor writing(ends[1]);
  ASSERT_EQ(::write(writing.Get(), "x", 1), 1);
  EXPECT_FALSE(system_.WaitForHangUp(reading.Get(), 0)) << "data are no hang-up";
  writing.Reset();
  EXPECT_TRUE(system_.WaitForHangUp(reading.Get(), 60'000));
}

TEST_F(SgSystemTest, AQuestionReachesTheNode) {
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
  const base::FileDescriptor reading(ends[0]);
  const base::FileDescriptor writing(ends[1]);
  ASSERT_EQ(::write(writing.Get(), "xyz", 3), 3);
  int waiting = 0;
  EXPECT_EQ(system_.Ioctl(reading.Get(), FIONREAD, &waiting), 0);
  EXPECT_EQ(waiting, 3);
}

}  // namespace
}  // namespace darwin::sg

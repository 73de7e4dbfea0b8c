#include "apps/commandline/Output.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <string>

#include "apps/commandline/Failure.h"
#include "base/FileDescriptor.h"
#include "platform/Sockets.h"

namespace apps {
namespace {

TEST(OutputTest, NothingIsWrittenBeforeFlush) {
  std::array<int, 2> ends{};
  ASSERT_EQ(platform::Pipe(ends), 0);
  for (const int end : ends) platform::SetNonBlocking(end);
  const base::FileDescriptor reader(ends[0]);
  const base::FileDescriptor writer(ends[1]);
  Output out(writer.Get());
  out.Add("one ");
  out.Add("two\n");
  std::array<char, 64> buffer{};
  EXPECT_EQ(::read(reader.Get(), buffer.data(), buffer.size()), -1);
  out.Flush();
  EXPECT_EQ(::read(reader.Get(), buffer.data(), buffer.size()), 8);
  EXPECT_STREQ(buffer.data(), "one two\n");
}

TEST(OutputTest, WriteGoesOutAtOnceBehindWhatWasCollected) {
  std::array<int, 2> ends{};
  ASSERT_EQ(platform::Pipe(ends), 0);
  for (const int end : ends) platform::SetNonBlocking(end);
  const base::FileDescriptor reader(ends[0]);
  const base::FileDescriptor writer(ends[1]);
  Output out(writer.Get());
  out.Add("one ");
  out.Write("two");
  std::array<char, 64> buffer{};
  EXPECT_EQ(::read(reader.Get(), buffer.data(), buffer.size()), 7);
  EXPECT_STREQ(buffer.data(), "one two");
  const base::FileDescriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
  EXPECT_THROW(Output(full.Get()).Write("x"), Failure);
}

TEST(OutputTest, AFullDiskIsAFailure) {
  const base::FileDescriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
  Output out(full.Get());
  out.Add("x");
  try {
    out.Flush();
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_STREQ(failure.what(),
                 "Cannot write to standard output: No space left on device; make room there and try again.");
    EXPECT_EQ(failure.Code(), ExitCode::kFailed);
  }
}

TEST(OutputTest, AReaderThatHasGoneIsNoFailureOfTheWork) {
  std::signal(SIGPIPE, SIG_IGN);
  std::array<int, 2> ends{};
  ASSERT_EQ(platform::Pipe(ends), 0);
  ::close(ends[0]);
  const base::FileDescriptor writer(ends[1]);
  Output out(writer.Get());
  out.Add("x");
  EXPECT_THROW(out.Flush(), ReaderGone);
  EXPECT_THROW(out.Write("y"), ReaderGone);
}

TEST(OutputTest, APipeIsNoTerminal) {
  std::array<int, 2> ends{};
  ASSERT_EQ(platform::Pipe(ends), 0);
  const base::FileDescriptor reader(ends[0]);
  const base::FileDescriptor writer(ends[1]);
  EXPECT_FALSE(Output(writer.Get()).IsTerminal());
}

}  // namespace
}  // namespace apps

#include "base/SendAll.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <thread>
#include <vector>

#include "base/FileDescriptor.h"

namespace base {
namespace {

class SendAllTest : public ::testing::Test {
 protected:
  SendAllTest() {
    std::array<int, 2> ends{};
    EXPECT_EQ(platform::SocketPair(ends), 0);
    near_ = FileDescriptor(ends[0]);
    far_ = FileDescriptor(ends[1]);
  }
  FileDescriptor near_;
  FileDescriptor far_;
};

TEST_F(SendAllTest, SendsMoreThanTheSocketHoldsAtOnce) {
  const std::vector<std::uint8_t> head(48, 1);
  const std::vector<std::uint8_t> body(3U << 20, 2);
  std::vector<std::uint8_t> received(head.size() + body.size());
  bool whole = false;
  std::thread peer([&] { whole = ReceiveAll(far_.Get(), received); });
  EXPECT_TRUE(SendAll(near_.Get(), head, body));
  peer.join();
  EXPECT_TRUE(whole);
  EXPECT_EQ(received[47], 1);
  EXPECT_EQ(received[48], 2);
  EXPECT_EQ(received.back(), 2);
}

TEST_F(SendAllTest, TellsThatThePeerHasGone) {
  far_.Reset();
  std::vector<std::uint8_t> bytes(4);
  EXPECT_FALSE(SendAll(near_.Get(), bytes));
  EXPECT_FALSE(ReceiveAll(near_.Get(), bytes));
}

TEST(WriteAllTest, WritesMoreThanAPipeHoldsAtOnce) {
  std::array<int, 2> ends{};
  ASSERT_EQ(platform::Pipe(ends), 0);
  const FileDescriptor out(ends[0]);
  FileDescriptor in(ends[1]);
  std::string received;
  std::thread peer([&] {
    std::array<char, 4096> piece;
    for (ssize_t count; (count = ::read(out.Get(), piece.data(), piece.size())) > 0;) {
      received.append(piece.data(), static_cast<std::size_t>(count));
    }
  });
  const std::string text(1U << 20, 'x');
  EXPECT_EQ(WriteAll(in.Get(), text), 0);
  in.Reset();
  peer.join();
  EXPECT_EQ(received, text);
}

TEST(WriteAllTest, ReturnsTheErrorOfTheSystem) {
  const FileDescriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
  EXPECT_EQ(WriteAll(full.Get(), "x"), ENOSPC);
}

}  // namespace
}  // namespace base

#include "vcam/usbip/SocketIo.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <array>
#include <thread>
#include <vector>

#include "vcam/device/FileDescriptor.h"

namespace vcam::usbip {
namespace {

class SocketIoTest : public ::testing::Test {
 protected:
  SocketIoTest() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    near_ = FileDescriptor(ends[0]);
    far_ = FileDescriptor(ends[1]);
  }
  FileDescriptor near_;
  FileDescriptor far_;
};

TEST_F(SocketIoTest, SendsMoreThanTheSocketHoldsAtOnce) {
  const std::vector<std::uint8_t> head(48, 1);
  const std::vector<std::uint8_t> body(3U << 20, 2);
  std::vector<std::uint8_t> received(head.size() + body.size());
  bool whole = false;
  std::thread peer([&] { whole = ReceiveAll(far_.get(), received); });
  EXPECT_TRUE(SendAll(near_.get(), head, body));
  peer.join();
  EXPECT_TRUE(whole);
  EXPECT_EQ(received[47], 1);
  EXPECT_EQ(received[48], 2);
  EXPECT_EQ(received.back(), 2);
}

TEST_F(SocketIoTest, TellsThatThePeerHasGone) {
  far_.Reset();
  std::vector<std::uint8_t> bytes(4);
  EXPECT_FALSE(SendAll(near_.get(), bytes, {}));
  EXPECT_FALSE(ReceiveAll(near_.get(), bytes));
}

}  // namespace
}  // namespace vcam::usbip

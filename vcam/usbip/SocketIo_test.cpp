#include "vcam/usbip/SocketIo.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <array>
#include <thread>
#include <vector>

#include "base/FileDescriptor.h"

namespace vcam::usbip {
namespace {

class SocketIoTest : public ::testing::Test {
 protected:
  SocketIoTest() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    near_ = base::FileDescriptor(ends[0]);
    far_ = base::FileDescriptor(ends[1]);
  }
  base::FileDescriptor near_;
  base::FileDescriptor far_;
};

TEST_F(SocketIoTest, SendsMoreThanTheSocketHoldsAtOnce) {
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

TEST_F(SocketIoTest, TellsThatThePeerHasGone) {
  far_.Reset();
  std::vector<std::uint8_t> bytes(4);
  EXPECT_FALSE(SendAll(near_.Get(), bytes, {}));
  EXPECT_FALSE(ReceiveAll(near_.Get(), bytes));
}

}  // namespace
}  // namespace vcam::usbip

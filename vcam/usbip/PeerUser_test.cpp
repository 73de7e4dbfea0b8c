#include "vcam/usbip/PeerUser.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>

#include "base/FileDescriptor.h"

namespace vcam::usbip {
namespace {

sockaddr_in At(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

const std::string kHead =
    "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout inode\n";

/// A table with one socket from port 40001 (9C41) to port 3240 (0CA8), in this state.
std::string Table(const std::string& state, const std::string& user, const std::string& inode) {
  return kHead +
         "   0: 0100007F:0CA8 00000000:0000 0A 00000000:00000000 00:00000000 00000000     0        0 11 1 0 100\n" +
         "   1: 0100007F:0CA8 0100007F:9C41 01 00000000:00000000 00:00000000 00000000     0        0 12 1 0 20 4\n" +
         "   2: 0100007F:9C41 0100007F:0CA8 " + state + " 00000000:00000000 02:00000A1B 00000000  " + user +
         "        0 " + inode + " 2 0 20 4 30 10 -1\n";
}

TEST(PeerUser, IsTheOwnerOfTheSocketWithTheTwoAddresses) {
  EXPECT_EQ(UserInTable(Table("01", "65534", "77"), At(40001), At(3240)), 65534U);
  EXPECT_EQ(UserInTable(Table("01", "65534", "77"), At(40002), At(3240)), std::nullopt);
  EXPECT_EQ(UserInTable(Table("01", "65534", "77"), At(40001), At(3241)), std::nullopt);
  EXPECT_EQ(UserInTable("", At(40001), At(3240)), std::nullopt);
  EXPECT_EQ(UserInTable(kHead + "  2: 0100007F:9C41 0100007F:0CA8 01", At(40001), At(3240)), std::nullopt);
}

TEST(PeerUser, IsUnknownOnceTheSocketIsClosing) {
  for (const char* state : {"04", "05", "06", "08"}) {
    EXPECT_EQ(UserInTable(Table(state, "0", "77"), At(40001), At(3240)), std::nullopt) << state;
  }
  EXPECT_EQ(UserInTable(Table("01", "0", "0"), At(40001), At(3240)), std::nullopt);
}

TEST(PeerUser, IsFoundForASocketOfIpv6) {
  const std::string table =
      kHead +
      "   1: 0000000000000000FFFF00000100007F:9C41 0000000000000000FFFF00000100007F:0CA8 01 00000000:00000000 " +
      "00:00000000 00000000  1000        0 77 1 0 20 4 30 10 -1\n";
  EXPECT_EQ(UserInTable(table, At(40001), At(3240)), 1000U);
}

/// Both ends of a connection over loopback, the far one of either family.
class Connection {
 public:
  explicit Connection(int family) {
    sockaddr_in address = At(0);
    socklen_t size = sizeof address;
    const base::FileDescriptor listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    EXPECT_EQ(::bind(listener.Get(), reinterpret_cast<sockaddr*>(&address), size), 0);
    EXPECT_EQ(::listen(listener.Get(), 1), 0);
    ::getsockname(listener.Get(), reinterpret_cast<sockaddr*>(&address), &size);
    far.Reset(::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0));
    connected = family == AF_INET6 ? ConnectMapped(address.sin_port)
                                   : ::connect(far.Get(), reinterpret_cast<sockaddr*>(&address), size) == 0;
    if (connected) near.Reset(::accept4(listener.Get(), nullptr, nullptr, SOCK_CLOEXEC));
  }

  base::FileDescriptor near;
  base::FileDescriptor far;
  bool connected = false;

 private:
  bool ConnectMapped(in_port_t port) const {
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_port = port;
    ::inet_pton(AF_INET6, "::ffff:127.0.0.1", &address.sin6_addr);
    return ::connect(far.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  }
};

TEST(PeerUser, IsThisUserForASocketOfThisProcess) {
  const Connection connection(AF_INET);
  ASSERT_TRUE(connection.connected);
  EXPECT_EQ(PeerUser(connection.near.Get()), ::geteuid());
  const Connection mapped(AF_INET6);
  // A machine without IPv6 has no such sockets.
  EXPECT_EQ(PeerUser(mapped.near.Get()), mapped.connected ? std::optional(::geteuid()) : std::nullopt);
}

TEST(PeerUser, IsUnknownOnceThePeerHasClosed) {
  Connection connection(AF_INET);
  connection.far.Reset();
  EXPECT_EQ(PeerUser(connection.near.Get()), std::nullopt);
  EXPECT_EQ(PeerUser(-1), std::nullopt);
}

}  // namespace
}  // namespace vcam::usbip

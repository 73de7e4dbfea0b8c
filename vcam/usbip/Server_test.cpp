#include "vcam/usbip/Server.h"
#include "base/SendAll.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include "vcam/usbip/CameraModel.h"

namespace vcam::usbip {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ServerTest : public ::testing::Test {
 protected:
  ServerTest() {
    server_.onComplaint = [this](const std::string& sentence) { complaint_ = sentence; };
    thread_ = std::thread([this] { server_.Run(stop_.Get()); });
  }
  ~ServerTest() override { Stop(); }
  void Stop() {
    ::eventfd_write(stop_.Get(), 1);
    if (thread_.joinable()) thread_.join();
  }
  base::FileDescriptor Connect() {
    base::FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(server_.Port());
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(socket.Get(), reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    return socket;
  }
  base::FileDescriptor AskToImport(const std::string& busId) {
    base::FileDescriptor socket = Connect();
    base::Bytes request{0x01, 0x11, 0x80, 0x03, 0, 0, 0, 0};
    base::AppendText(request, busId);
    request.resize(8 + 32);
    EXPECT_TRUE(base::SendAll(socket.Get(), request));
    return socket;
  }
  static base::Bytes Receive(const base::FileDescriptor& socket, std::size_t size) {
    base::Bytes bytes(size);
    return base::ReceiveAll(socket.Get(), bytes) ? bytes : base::Bytes{};
  }

  wire::Reply reply_;
  std::string complaint_;
  Server server_{OfferOf(Speed::kHigh),
                 {{"Kelva", "Camera", "A7", Speed::kHigh}, {}, [this](const wire::Command&) { return reply_; }, {}},
                 0};
  base::FileDescriptor stop_{::eventfd(0, EFD_CLOEXEC)};
  std::thread thread_;
};

TEST_F(ServerTest, ListsTheCamera) {
  const base::FileDescriptor socket = Connect();
  base::SendAll(socket.Get(), base::Bytes{0x01, 0x11, 0x80, 0x05, 0, 0, 0, 0});
  EXPECT_EQ(Receive(socket, 8 + 4 + 312 + 4).size(), 328U);
}

TEST_F(ServerTest, HandsTheCameraToOneHostAtATime) {
  const base::FileDescriptor first = AskToImport("1-1");
  ASSERT_EQ(Receive(first, 320).size(), 320U);
  const base::FileDescriptor second = AskToImport("1-1");
  EXPECT_THAT(Receive(second, 8), ElementsAre(0x01, 0x11, 0, 3, 0, 0, 0, 2));
}

TEST_F(ServerTest, KnowsNoOtherDevice) {
  const base::FileDescriptor socket = AskToImport("1-2");
  EXPECT_THAT(Receive(socket, 8), ElementsAre(0x01, 0x11, 0, 3, 0, 0, 0, 4));
}

TEST_F(ServerTest, PullsTheCableWhenItEnds) {
  const base::FileDescriptor host = AskToImport("1-1");
  ASSERT_EQ(Receive(host, 320).size(), 320U);
  Stop();
  EXPECT_THAT(Receive(host, 1), IsEmpty());
}

TEST_F(ServerTest, ComplainsOfAPeerThatSpeaksAnotherLanguage) {
  const base::FileDescriptor socket = Connect();
  base::SendAll(socket.Get(), base::Bytes{'G', 'E', 'T', ' ', '/', '\r', '\n', '\n'});
  EXPECT_THAT(Receive(socket, 1), IsEmpty());
  Stop();
  EXPECT_THAT(complaint_, ::testing::HasSubstr("1.1.1"));
}

}  // namespace
}  // namespace vcam::usbip

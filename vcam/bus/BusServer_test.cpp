#include "vcam/bus/BusServer.h"

#include <gmock/gmock.h>
#include <sys/socket.h>

#include <algorithm>
#include <iterator>
#include <random>

#include "vcam/bus/TestServer.h"
#include "vcam/client/BusConnection.h"

namespace vcam::bus {
namespace {

using client::BusConnection;

class BusServerTest : public testing::Test {
 protected:
  Bytes PlugOf(const std::string& serial) const {
    return Encode(PlugRequest{serial, server_.scratch().path().string(), "", "", 3});
  }
  std::size_t CountCameras() {
    BusConnection connection(server_.path());
    return DecodeStatusList(connection.Request(Kind::kStatus, {}).payload)->size();
  }
  /// Sends these bytes and waits until the bus hangs up.
  void SendAndExpectHangUp(const Bytes& bytes) {
    const FileDescriptor socket = ConnectTo(server_.path());
    ASSERT_TRUE(socket);
    ::send(socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    char byte = 0;
    while (::recv(socket.get(), &byte, 1, 0) > 0) {
    }
  }

  test::TestServer server_;
};

TEST_F(BusServerTest, ServesSeveralPeersAtOnce) {
  BusConnection first(server_.path());
  BusConnection second(server_.path());
  first.Request(Kind::kPlug, PlugOf("A"));
  EXPECT_EQ(DecodeStatusList(second.Request(Kind::kStatus, {}).payload)->at(0).serial, "A");
}

TEST_F(BusServerTest, HangsUpOnPeersThatSpeakAnotherLanguage) {
  SendAndExpectHangUp({'G', 'E', 'T', ' ', '/', '\r', '\n'});
  SendAndExpectHangUp({0xFF, 0xFF, 0xFF, 0xFF});
  SendAndExpectHangUp({0, 0, 0, 0});
  SendAndExpectHangUp(EncodeFrame(Kind::kStatus, 1, {}));
  EXPECT_EQ(CountCameras(), 0U) << "and serves the others";
}

TEST_F(BusServerTest, SurvivesSeededNonsense) {
  std::mt19937 random(20260314);
  for (int round = 0; round < 200; ++round) {
    Bytes bytes = EncodeFrame(Kind::kHello, 1, EncodeNumber(kProtocolVersion));
    for (std::uint32_t i = 0; i < 10; ++i) {
      Bytes payload(random() % 40);
      for (std::uint8_t& byte : payload) byte = static_cast<std::uint8_t>(random());
      const Bytes frame = EncodeFrame(static_cast<Kind>(random() % 12), i, payload);
      std::copy(frame.begin(), frame.end(), std::back_inserter(bytes));
    }
    const FileDescriptor socket = ConnectTo(server_.path());
    ASSERT_TRUE(socket);
    ::send(socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
  }
  EXPECT_EQ(CountCameras(), 0U);
}

TEST_F(BusServerTest, HoldsNobodyUpBehindASlowCamera) {
  BusConnection slow(server_.path());
  BusConnection quick(server_.path());
  for (const char* serial : {"A", "B"}) quick.Request(Kind::kPlug, PlugOf(serial));
  quick.Request(Kind::kFault, Encode(FaultRequest{"A", "slow", 3'600'000}));
  slow.Request(Kind::kStartSession, EncodeNumber(1));
  quick.Request(Kind::kStartSession, EncodeNumber(2));
  Command command = vcam::test::Block({0xC6, 0, 0x04});
  command.direction = Direction::kFromCamera;
  command.length = 4;
  EXPECT_FALSE(slow.Request(Kind::kCommand, Encode(command), std::chrono::milliseconds(1)));
  EXPECT_EQ(quick.Request(Kind::kCommand, Encode(command)).kind, Kind::kReply);
}

TEST_F(BusServerTest, FreesTheCameraOfAPeerThatHasGone) {
  BusConnection second(server_.path());
  second.Request(Kind::kPlug, PlugOf("A"));
  {
    BusConnection first(server_.path());
    first.Request(Kind::kStartSession, EncodeNumber(1));
    EXPECT_THROW(second.Request(Kind::kStartSession, EncodeNumber(1)), client::BusRefusal);
  }
  // The bus has seen the end of the first by the time it answers a later connection.
  EXPECT_EQ(CountCameras(), 1U);
  EXPECT_EQ(second.Request(Kind::kStartSession, EncodeNumber(1)).kind, Kind::kOk);
}

TEST_F(BusServerTest, MovesWholeTransfersOfTheLargestSize) {
  BusConnection connection(server_.path());
  connection.Request(Kind::kPlug, PlugOf("A"));
  connection.Request(Kind::kStartSession, EncodeNumber(1));
  Command command = vcam::test::Block({0xC2, 0, 0x01, 0x01});
  const Bytes path = vcam::test::Text(R"(I:\big)");
  command.direction = Direction::kToCamera;
  command.length = static_cast<std::uint32_t>(path.size());
  command.data = path;
  connection.Request(Kind::kCommand, Encode(command));
  const Bytes content(kMaxTransferLength, 'b');
  command.cdb = {0xC5};
  command.length = kMaxTransferLength;
  command.data = content;
  const auto reply = DecodeReply(connection.Request(Kind::kCommand, Encode(command)).payload);
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->moved, kMaxTransferLength);
  EXPECT_EQ(std::filesystem::file_size(server_.scratch().path() / "big"), kMaxTransferLength);
}

}  // namespace
}  // namespace vcam::bus

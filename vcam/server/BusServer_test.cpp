#include "vcam/server/BusServer.h"

#include <gmock/gmock.h>
#include <sys/socket.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <set>

#include "base/testing/NoFreeDescriptor.h"
#include "base/testing/RandomSeed.h"
#include "bus/BusConnection.h"
#include "platform/Sockets.h"
#include "vcam/server/testing/TestServer.h"

namespace vcam::server {
namespace {

using bus::BusConnection;

class BusServerTest : public testing::Test {
 protected:
  base::Bytes PlugOf(const std::string& serial) const {
    return bus::Encode(bus::PlugRequest{serial, server_.Scratch().Path().string(), "", "", 3});
  }
  std::size_t CountCameras() {
    bus::BusConnection connection(server_.Path());
    return bus::Decode<std::vector<bus::CameraStatus>>(connection.Request(bus::Kind::kStatus, {}).payload)->size();
  }
  /// Sends these bytes and waits until the bus hangs up.
  void SendAndExpectHangUp(const base::Bytes& bytes) {
    const base::FileDescriptor socket = bus::ConnectTo(server_.Path());
    ASSERT_TRUE(socket);
    platform::Send(socket.Get(), bytes.data(), bytes.size(), 0);
    char byte = 0;
    while (::recv(socket.Get(), &byte, 1, 0) > 0) {
    }
  }

  test::TestServer server_;
};

TEST_F(BusServerTest, WaitsWhenNoDescriptorIsFree) {
  bus::BusConnection connected(server_.Path());
  base::FileDescriptor waiting;
  {
    const base::test::NoFreeDescriptor none(1);
    waiting = bus::ConnectTo(server_.Path());
    ASSERT_TRUE(waiting);
    EXPECT_LT(base::test::ProcessorTimeUntilReadable(waiting.Get(), std::chrono::milliseconds(500)),
              std::chrono::milliseconds(100));
    // Peers that are connected are served meanwhile.
    EXPECT_EQ(connected.Request(bus::Kind::kStatus, {}).kind, bus::Kind::kOk);
  }
  EXPECT_EQ(CountCameras(), 0U);
}

TEST_F(BusServerTest, ServesSeveralPeersAtOnce) {
  bus::BusConnection first(server_.Path());
  bus::BusConnection second(server_.Path());
  first.Request(bus::Kind::kPlug, PlugOf("A"));
  EXPECT_EQ(bus::Decode<std::vector<bus::CameraStatus>>(second.Request(bus::Kind::kStatus, {}).payload)->at(0).serial,
            "A");
}

TEST_F(BusServerTest, HangsUpOnPeersThatSpeakAnotherLanguage) {
  SendAndExpectHangUp({'G', 'E', 'T', ' ', '/', '\r', '\n'});
  SendAndExpectHangUp({0xFF, 0xFF, 0xFF, 0xFF});
  SendAndExpectHangUp({0, 0, 0, 0});
  SendAndExpectHangUp(bus::EncodeFrame(bus::Kind::kStatus, 1, {}));
  EXPECT_EQ(CountCameras(), 0U) << "and serves the others";
}

TEST_F(BusServerTest, SurvivesSeededNonsense) {
  std::mt19937 random(base::RandomSeed());
  for (int round = 0; round < 200; ++round) {
    base::Bytes bytes = bus::EncodeFrame(bus::Kind::kHello, 1, bus::EncodeNumber(bus::kProtocolVersion));
    for (std::uint32_t i = 0; i < 10; ++i) {
      base::Bytes payload(random() % 40);
      for (std::uint8_t& byte : payload) byte = static_cast<std::uint8_t>(random());
      const base::Bytes frame = bus::EncodeFrame(static_cast<bus::Kind>(random() % 12), i, payload);
      std::copy(frame.begin(), frame.end(), std::back_inserter(bytes));
    }
    const base::FileDescriptor socket = bus::ConnectTo(server_.Path());
    ASSERT_TRUE(socket);
    platform::Send(socket.Get(), bytes.data(), bytes.size(), 0);
  }
  EXPECT_EQ(CountCameras(), 0U);
}

TEST_F(BusServerTest, HoldsNobodyUpBehindASlowCamera) {
  bus::BusConnection slow(server_.Path());
  bus::BusConnection quick(server_.Path());
  for (const char* serial : {"A", "B"}) quick.Request(bus::Kind::kPlug, PlugOf(serial));
  quick.Request(bus::Kind::kFault, bus::Encode(bus::FaultRequest{"A", "slow", 3'600'000}));
  slow.Request(bus::Kind::kStartSession, bus::EncodeNumber(1));
  quick.Request(bus::Kind::kStartSession, bus::EncodeNumber(2));
  wire::Command command = vcam::test::Block({0xC6, 0, 0x04});
  command.direction = wire::Direction::kFromCamera;
  command.length = 4;
  EXPECT_FALSE(slow.Request(bus::Kind::kCommand, bus::Encode(command), std::chrono::milliseconds(1)));
  EXPECT_EQ(quick.Request(bus::Kind::kCommand, bus::Encode(command)).kind, bus::Kind::kReply);
}

TEST_F(BusServerTest, FreesTheCameraOfAPeerThatHasGone) {
  bus::BusConnection second(server_.Path());
  second.Request(bus::Kind::kPlug, PlugOf("A"));
  {
    bus::BusConnection first(server_.Path());
    first.Request(bus::Kind::kStartSession, bus::EncodeNumber(1));
    EXPECT_THROW(second.Request(bus::Kind::kStartSession, bus::EncodeNumber(1)), bus::BusRefusal);
  }
  // The bus has seen the end of the first by the time it answers a later connection.
  EXPECT_EQ(CountCameras(), 1U);
  EXPECT_EQ(second.Request(bus::Kind::kStartSession, bus::EncodeNumber(1)).kind, bus::Kind::kOk);
}

TEST_F(BusServerTest, PlugsAnOpaqueCameraWithItsSeed) {
  bus::BusConnection connection(server_.Path());
  std::set<base::Bytes> levels;
  for (const std::uint32_t seed : {1U, 2U, 1U}) {
    bus::PlugRequest opaque{"A", server_.Scratch().Path().string(), "", "", 3, bus::kOpaque, seed};
    const bus::Frame plugged = connection.Request(bus::Kind::kPlug, bus::Encode(opaque));
    connection.Request(bus::Kind::kStartSession, plugged.payload);
    wire::Command battery = vcam::test::Block({0xC6, 0, 0x06});
    battery.direction = wire::Direction::kFromCamera;
    battery.length = 4;
    levels.insert(
        bus::Decode<wire::Reply>(connection.Request(bus::Kind::kCommand, bus::Encode(battery)).payload)->data);
    connection.Request(bus::Kind::kUnplug, bus::EncodeText("A"));
  }
  EXPECT_EQ(levels.size(), 2U);
  EXPECT_FALSE(levels.contains({0, 0, 0xC8, 0x42}));
}

TEST_F(BusServerTest, PlugsACameraWithItsTraits) {
  bus::BusConnection connection(server_.Path());
  bus::PlugRequest peculiar{"A", server_.Scratch().Path().string(), "", "", 3};
  peculiar.traits = bus::kForwardOnly | bus::kWithoutKeys;
  connection.Request(bus::Kind::kPlug, bus::Encode(peculiar));
  connection.Request(bus::Kind::kStartSession, bus::EncodeNumber(1));
  wire::Command command = vcam::test::Block({0xC2, 0, 0x02});
  connection.Request(bus::Kind::kCommand, bus::Encode(command));
  command = vcam::test::Block({0xC4, 0, 0x01});
  command.direction = wire::Direction::kFromCamera;
  command.length = 4;
  const auto read = [&] {
    return bus::Decode<wire::Reply>(connection.Request(bus::Kind::kCommand, bus::Encode(command)).payload)->data;
  };
  EXPECT_EQ(read(), (base::Bytes{1, 0, 0, 0}));
  EXPECT_EQ(read(), (base::Bytes{128, 0, 0, 0})) << "the next bytes, whatever the offset";
}

TEST_F(BusServerTest, MovesWholeTransfersOfTheLargestSize) {
  bus::BusConnection connection(server_.Path());
  connection.Request(bus::Kind::kPlug, PlugOf("A"));
  connection.Request(bus::Kind::kStartSession, bus::EncodeNumber(1));
  wire::Command command = vcam::test::Block({0xC2, 0, 0x01, 0x01});
  const base::Bytes path = vcam::test::Text(R"(I:\big)");
  command.direction = wire::Direction::kToCamera;
  command.length = static_cast<std::uint32_t>(path.size());
  command.data = path;
  connection.Request(bus::Kind::kCommand, bus::Encode(command));
  const base::Bytes content(wire::kMaxTransferLength, 'b');
  command.cdb = {0xC5};
  command.length = wire::kMaxTransferLength;
  command.data = content;
  const auto reply = bus::Decode<wire::Reply>(connection.Request(bus::Kind::kCommand, bus::Encode(command)).payload);
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->moved, wire::kMaxTransferLength);
  EXPECT_EQ(std::filesystem::file_size(server_.Scratch().Path() / "big"), wire::kMaxTransferLength);
}

}  // namespace
}  // namespace vcam::server

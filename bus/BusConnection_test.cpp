#include "bus/BusConnection.h"

#include <gmock/gmock.h>

#include "vcam/server/testing/TestServer.h"

namespace bus {
namespace {

TEST(BusConnection, SaysThatNobodyServesThePath) {
  try {
    BusConnection connection("/nonexistent/bus");
    FAIL() << "connected to nothing";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("/nonexistent/bus: No such file or directory; start one with"));
  }
}

TEST(BusConnection, ThrowsARefusalWithItsSentence) {
  vcam::server::test::TestServer server;
  BusConnection connection(server.Path());
  try {
    connection.Request(Kind::kUnplug, EncodeText("X"));
    FAIL() << "unplugged nothing";
  } catch (const BusRefusal& refusal) {
    EXPECT_EQ(refusal.code, ErrorCode::kNoSuchCamera);
    EXPECT_THAT(refusal.what(), testing::HasSubstr("No camera X"));
  }
}

TEST(BusConnection, KeepsEventsThatComeBeforeAnAnswer) {
  vcam::server::test::TestServer server;
  BusConnection connection(server.Path());
  const PlugRequest request{"A", server.Scratch().Path().string(), "", "", 3};
  connection.Request(Kind::kSubscribe, {});
  EXPECT_FALSE(connection.HasQueuedEvents());
  connection.Request(Kind::kPlug, Encode(request));
  EXPECT_TRUE(connection.HasQueuedEvents());
  EXPECT_EQ(connection.NextEvent()->kind, Kind::kPlugged);
  EXPECT_FALSE(connection.NextEvent());
}

TEST(BusConnection, SeesTheEndOfTheBus) {
  vcam::server::test::TestServer server;
  BusConnection connection(server.Path());
  server.Stop();
  EXPECT_FALSE(connection.NextEvent());
  EXPECT_TRUE(connection.Ended());
  EXPECT_THROW(connection.Request(Kind::kStatus, {}), std::runtime_error);
  EXPECT_FALSE(connection.Request(Kind::kStatus, {}, std::chrono::seconds(10)));
}

}  // namespace
}  // namespace bus

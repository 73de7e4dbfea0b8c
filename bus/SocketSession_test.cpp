#include "bus/SocketSession.h"

#include <IOKit/IOReturn.h>
#include <gmock/gmock.h>

#include "bus/BusConnection.h"
#include "vcam/server/testing/TestServer.h"

namespace bus {
namespace {

class SocketSessionTest : public testing::Test {
 protected:
  SocketSessionTest() {
    connection_.Request(Kind::kPlug, Encode(PlugRequest{"A", server_.Scratch().Path().string(), "", "", 3}));
  }
  void Arm(const std::string& fault) { connection_.Request(Kind::kFault, Encode(FaultRequest{"A", fault, 1})); }
  wire::Reply AskReady(CommandSession& session, std::chrono::milliseconds timeout = std::chrono::seconds(10)) {
    wire::Command command = vcam::test::Block({0xC6, 0, 0x04});
    command.direction = wire::Direction::kFromCamera;
    command.length = 4;
    return session.Execute(command, timeout);
  }

  vcam::server::test::TestServer server_;
  BusConnection connection_{server_.Path()};
  std::unique_ptr<CommandSession> session_ = MakeSocketSession(server_.Path(), 1);
};

TEST_F(SocketSessionTest, CarriesACommandThereAndBack) {
  ASSERT_EQ(session_->Start(), kIOReturnSuccess);
  EXPECT_EQ(AskReady(*session_).data, (base::Bytes{1, 0, 0, 0}));
}

TEST_F(SocketSessionTest, IsExclusive) {
  ASSERT_EQ(session_->Start(), kIOReturnSuccess);
  const auto second = MakeSocketSession(server_.Path(), 1);
  EXPECT_EQ(second->Start(), kIOReturnExclusiveAccess);
  session_->End();
  EXPECT_EQ(second->Start(), kIOReturnSuccess);
}

TEST_F(SocketSessionTest, HasNoDeviceBehindAnIdThatIsNot) {
  EXPECT_EQ(MakeSocketSession(server_.Path(), 77)->Start(), kIOReturnNoDevice);
  EXPECT_EQ(MakeSocketSession("/nonexistent", 1)->Start(), kIOReturnNoDevice);
  EXPECT_EQ(AskReady(*session_).transport, wire::Transport::kGone) << "no session";
}

TEST_F(SocketSessionTest, GivesUpACommandThatHangsAndRunsTheNext) {
  ASSERT_EQ(session_->Start(), kIOReturnSuccess);
  Arm("hang");
  EXPECT_EQ(AskReady(*session_, std::chrono::milliseconds(20)).transport, wire::Transport::kHang);
  EXPECT_TRUE(AskReady(*session_).Good());
}

TEST_F(SocketSessionTest, IsGoneWithTheCamera) {
  ASSERT_EQ(session_->Start(), kIOReturnSuccess);
  connection_.Request(Kind::kUnplug, EncodeText("A"));
  EXPECT_EQ(AskReady(*session_).transport, wire::Transport::kGone);
}

TEST_F(SocketSessionTest, IsGoneWithTheBus) {
  ASSERT_EQ(session_->Start(), kIOReturnSuccess);
  server_.Stop();
  EXPECT_EQ(AskReady(*session_).transport, wire::Transport::kGone);
  EXPECT_EQ(AskReady(*session_).transport, wire::Transport::kGone);
}

}  // namespace
}  // namespace bus

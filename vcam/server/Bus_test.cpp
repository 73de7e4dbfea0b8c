#include "vcam/server/Bus.h"

#include <gmock/gmock.h>
#include <poll.h>

#include "bus/FrameReader.h"
#include "vcam/camera/testing/TestSupport.h"

namespace vcam::server {
namespace {

using testing::HasSubstr;

class BusTest : public testing::Test {
 protected:
  BusTest() {
    for (const PeerId peer : {1U, 2U}) {
      bus_.AddPeer(peer, static_cast<pid_t>(1000 + peer));
      EXPECT_TRUE(Ask(peer, bus::Kind::kHello, bus::EncodeNumber(2)));
      sent_.clear();
    }
  }

  bool Ask(PeerId peer, bus::Kind kind, const base::Bytes& payload) { return bus_.Handle(peer, {kind, 7, payload}); }

  /// Asks what is answered at once.
  bus::Frame Answered(PeerId peer, bus::Kind kind, const base::Bytes& payload) {
    sent_.clear();
    EXPECT_TRUE(Ask(peer, kind, payload));
    return sent_.empty() ? bus::Frame{} : sent_.back().second;
  }
  bus::ErrorAnswer Refused(PeerId peer, bus::Kind kind, const base::Bytes& payload) {
    const bus::Frame answer = Answered(peer, kind, payload);
    EXPECT_EQ(answer.kind, bus::Kind::kError);
    return bus::Decode<bus::ErrorAnswer>(answer.payload).value_or(bus::ErrorAnswer{});
  }

  bus::PlugRequest PlugOf(const std::string& serial) const { return {serial, scratch_.Path().string(), "", "", 3}; }
  void Plug(const std::string& serial) {
    EXPECT_EQ(Answered(1, bus::Kind::kPlug, bus::Encode(PlugOf(serial))).kind, bus::Kind::kOk);
    sent_.clear();
  }

  static wire::Command Reads(wire::Command command) {
    command.direction = wire::Direction::kFromCamera;
    command.length = 4;
    return command;
  }
  static wire::Command ReadyCommand() { return Reads(test::Block({0xC6, 0, 0x04})); }
  static wire::Command PieceCommand() { return Reads(test::Block({0xC4, 0, 0})); }
  /// Waits for the camera's thread.
  void Complete() {
    pollfd readable{bus_.Descriptor(), POLLIN, 0};
    ASSERT_EQ(::poll(&readable, 1, 10'000), 1);
    bus_.TakeCompletions();
  }
  wire::Reply LastReply() {
    EXPECT_FALSE(sent_.empty());
    if (sent_.empty()) return {};
    EXPECT_EQ(sent_.back().second.kind, bus::Kind::kReply);
    return bus::Decode<wire::Reply>(sent_.back().second.payload).value_or(wire::Reply{});
  }

  test::ScratchStorage scratch_;
  std::vector<std::pair<PeerId, bus::Frame>> sent_;
  Bus bus_{[this](PeerId peer, const base::Bytes& bytes) {
    bus::FrameReader reader;
    reader.Feed(bytes);
    sent_.emplace_back(peer, reader.Next().value());
  }};
};

TEST_F(BusTest, WantsAGreetingFirst) {
  bus_.AddPeer(3, 1003);
  EXPECT_FALSE(Ask(3, bus::Kind::kStatus, {}));
  EXPECT_THAT(Refused(3, bus::Kind::kHello, bus::EncodeNumber(1)).sentence, HasSubstr("version 2"));
  EXPECT_FALSE(Ask(3, bus::Kind::kStatus, {})) << "the greeting was refused";
  EXPECT_FALSE(Ask(3, bus::Kind::kHello, {1})) << "no number";
}

TEST_F(BusTest, TellsSubscribersWhatIsPresentAndWhatChanges) {
  Plug("A");
  EXPECT_TRUE(Ask(2, bus::Kind::kSubscribe, {}));
  ASSERT_EQ(sent_.size(), 2U);
  EXPECT_EQ(sent_[0].second.kind, bus::Kind::kPlugged);
  EXPECT_EQ(bus::Decode<bus::CameraStatus>(sent_[0].second.payload)->serial, "A");
  EXPECT_EQ(sent_[1].second.kind, bus::Kind::kOk);
  sent_.clear();
  EXPECT_TRUE(Ask(1, bus::Kind::kPlug, bus::Encode(PlugOf("B"))));
  ASSERT_EQ(sent_.size(), 2U);
  EXPECT_EQ(sent_[0].first, 2U) << "the subscriber hears of it before the one who asked";
  EXPECT_EQ(sent_[0].second.tag, 0U);
  sent_.clear();
  EXPECT_TRUE(Ask(1, bus::Kind::kUnplug, bus::EncodeText("A")));
  ASSERT_EQ(sent_.size(), 2U);
  EXPECT_EQ(sent_[0].second.kind, bus::Kind::kUnplugged);
  EXPECT_EQ(bus::Decode<std::uint32_t>(sent_[0].second.payload), 1U);
}

TEST_F(BusTest, RefusesCamerasThatCannotBe) {
  Plug("A");
  EXPECT_EQ(Refused(1, bus::Kind::kPlug, bus::Encode(PlugOf("A"))).code, bus::ErrorCode::kBusy);
  EXPECT_EQ(Refused(1, bus::Kind::kPlug, bus::Encode(PlugOf(""))).code, bus::ErrorCode::kRefused);
  EXPECT_EQ(Refused(1, bus::Kind::kPlug, bus::Encode(PlugOf(std::string(127, 'x')))).code, bus::ErrorCode::kRefused);
  bus::PlugRequest nowhere = PlugOf("B");
  nowhere.storage = "/nonexistent";
  EXPECT_THAT(Refused(1, bus::Kind::kPlug, bus::Encode(nowhere)).sentence, HasSubstr("/nonexistent"));
  bus::PlugRequest odd = PlugOf("B");
  odd.catalogue = "odd";
  EXPECT_THAT(Refused(1, bus::Kind::kPlug, bus::Encode(odd)).sentence, HasSubstr("odd"));
}

TEST_F(BusTest, SaysWhatItDoesNotKnow) {
  EXPECT_EQ(Refused(1, bus::Kind::kUnplug, bus::EncodeText("X")).code, bus::ErrorCode::kNoSuchCamera);
  EXPECT_EQ(Refused(1, bus::Kind::kFault, bus::Encode(bus::FaultRequest{"X", "fail", 1})).code,
            bus::ErrorCode::kNoSuchCamera);
  EXPECT_EQ(Refused(1, bus::Kind::kStartSession, bus::EncodeNumber(99)).code, bus::ErrorCode::kNoSuchCamera);
  Plug("A");
  EXPECT_THAT(Refused(1, bus::Kind::kFault, bus::Encode(bus::FaultRequest{"A", "boo", 1})).sentence,
              HasSubstr("stall"));
}

TEST_F(BusTest, CutsOffPeersThatSendWhatIsNoRequest) {
  for (const bus::Kind kind :
       {bus::Kind::kPlug, bus::Kind::kUnplug, bus::Kind::kFault, bus::Kind::kStartSession, bus::Kind::kCommand}) {
    EXPECT_FALSE(Ask(1, kind, {1})) << int(kind);
  }
  for (const bus::Kind kind : {bus::Kind::kSubscribe, bus::Kind::kStatus, bus::Kind::kEndSession}) {
    EXPECT_FALSE(Ask(1, kind, {1}));
  }
  EXPECT_FALSE(Ask(1, bus::Kind::kOk, {}));
  EXPECT_FALSE(Ask(1, static_cast<bus::Kind>(200), {}));
}

TEST_F(BusTest, GivesASessionToOnePeerAndSaysWhoHasIt) {
  Plug("A");
  EXPECT_EQ(Answered(1, bus::Kind::kStartSession, bus::EncodeNumber(1)).kind, bus::Kind::kOk);
  EXPECT_FALSE(Ask(1, bus::Kind::kStartSession, bus::EncodeNumber(1))) << "one session per connection";
  const bus::ErrorAnswer busy = Refused(2, bus::Kind::kStartSession, bus::EncodeNumber(1));
  EXPECT_EQ(busy.code, bus::ErrorCode::kBusy);
  EXPECT_THAT(busy.sentence, HasSubstr("process 1001"));
  const auto list = bus::Decode<std::vector<bus::CameraStatus>>(Answered(2, bus::Kind::kStatus, {}).payload);
  EXPECT_EQ(list->at(0).holder, 1001U);
  EXPECT_EQ(Answered(1, bus::Kind::kEndSession, {}).kind, bus::Kind::kOk);
  EXPECT_EQ(Answered(2, bus::Kind::kStartSession, bus::EncodeNumber(1)).kind, bus::Kind::kOk);
}

TEST_F(BusTest, EndsTheSessionOfAPeerThatGoes) {
  Plug("A");
  EXPECT_EQ(Answered(1, bus::Kind::kStartSession, bus::EncodeNumber(1)).kind, bus::Kind::kOk);
  bus_.RemovePeer(1);
  EXPECT_EQ(Answered(2, bus::Kind::kStartSession, bus::EncodeNumber(1)).kind, bus::Kind::kOk);
}

TEST_F(BusTest, RunsACommandAndAnswersIt) {
  Plug("A");
  Answered(1, bus::Kind::kStartSession, bus::EncodeNumber(1));
  EXPECT_TRUE(Ask(1, bus::Kind::kCommand, bus::Encode(ReadyCommand())));
  Complete();
  EXPECT_EQ(LastReply().data, (base::Bytes{1, 0, 0, 0}));
  EXPECT_EQ(sent_.back().second.tag, 7U);
}

TEST_F(BusTest, APieceOfALoneCameraIsAnsweredAtOnce) {
  Plug("A");
  EXPECT_TRUE(Ask(2, bus::Kind::kStartSession, bus::EncodeNumber(1)));
  sent_.clear();
  EXPECT_TRUE(Ask(2, bus::Kind::kCommand, bus::Encode(PieceCommand())));
  EXPECT_EQ(sent_.size(), 1U);
  EXPECT_NE(LastReply().status, wire::kScsiGood) << "nothing was selected";
}

TEST_F(BusTest, APieceOfOneOfSeveralCamerasHoldsUpNoOther) {
  Plug("A");
  Plug("B");
  EXPECT_TRUE(Ask(2, bus::Kind::kStartSession, bus::EncodeNumber(1)));
  sent_.clear();
  EXPECT_TRUE(Ask(2, bus::Kind::kCommand, bus::Encode(PieceCommand())));
  EXPECT_TRUE(sent_.empty()) << "it is the camera's thread that runs it";
  Complete();
  EXPECT_EQ(sent_.size(), 1U);
}

TEST_F(BusTest, AnswersACommandWithoutSessionAsGone) {
  EXPECT_TRUE(Ask(1, bus::Kind::kCommand, bus::Encode(ReadyCommand())));
  EXPECT_EQ(LastReply().transport, wire::Transport::kGone);
}

TEST_F(BusTest, HoldsACommandThatHangsUntilTheUnplug) {
  Plug("A");
  Answered(1, bus::Kind::kStartSession, bus::EncodeNumber(1));
  Answered(2, bus::Kind::kFault, bus::Encode(bus::FaultRequest{"A", "hang", 1}));
  sent_.clear();
  EXPECT_TRUE(Ask(1, bus::Kind::kCommand, bus::Encode(ReadyCommand())));
  Complete();
  EXPECT_TRUE(sent_.empty());
  EXPECT_TRUE(Ask(2, bus::Kind::kUnplug, bus::EncodeText("A")));
  EXPECT_EQ(sent_[0].first, 1U);
  EXPECT_EQ(bus::Decode<wire::Reply>(sent_[0].second.payload)->transport, wire::Transport::kGone);
  EXPECT_TRUE(Ask(1, bus::Kind::kCommand, bus::Encode(ReadyCommand())));
  EXPECT_EQ(LastReply().transport, wire::Transport::kGone);
}

TEST_F(BusTest, LetsAHostGiveACommandUp) {
  Plug("A");
  Answered(1, bus::Kind::kStartSession, bus::EncodeNumber(1));
  Answered(2, bus::Kind::kFault, bus::Encode(bus::FaultRequest{"A", "hang", 1}));
  EXPECT_TRUE(Ask(1, bus::Kind::kCommand, bus::Encode(ReadyCommand())));
  Complete();
  EXPECT_TRUE(Ask(1, bus::Kind::kCommand, bus::Encode(ReadyCommand())));
  Complete();
  EXPECT_TRUE(LastReply().Good());
}

TEST_F(BusTest, LetsAHostGiveUpACommandThatIsStillRunning) {
  Plug("A");
  Answered(1, bus::Kind::kStartSession, bus::EncodeNumber(1));
  // Nothing is taken from the camera's thread in between, so each counts as running.
  for (int i = 0; i < 4; ++i) {
    EXPECT_TRUE(Ask(1, bus::Kind::kCommand, bus::Encode(ReadyCommand())));
  }
  EXPECT_FALSE(Ask(1, bus::Kind::kCommand, bus::Encode(ReadyCommand()))) << "too many at once";
}

TEST_F(BusTest, WaitsAsLongAsASlowCommandTakes) {
  Plug("A");
  Answered(1, bus::Kind::kStartSession, bus::EncodeNumber(1));
  Answered(2, bus::Kind::kFault, bus::Encode(bus::FaultRequest{"A", "slow", 3'600'000}));
  sent_.clear();
  EXPECT_EQ(bus_.NextDue(), Bus::Clock::time_point::max());
  EXPECT_TRUE(Ask(1, bus::Kind::kCommand, bus::Encode(ReadyCommand())));
  Complete();
  bus_.SendDue();
  EXPECT_TRUE(sent_.empty());
  EXPECT_GT(bus_.NextDue(), Bus::Clock::now() + std::chrono::minutes(50));
}

TEST_F(BusTest, UnplugsACameraThatLeavesInMidCommand) {
  Plug("A");
  EXPECT_TRUE(Ask(2, bus::Kind::kSubscribe, {}));
  Answered(1, bus::Kind::kStartSession, bus::EncodeNumber(1));
  Answered(2, bus::Kind::kFault, bus::Encode(bus::FaultRequest{"A", "unplug", 2}));
  sent_.clear();
  EXPECT_TRUE(Ask(1, bus::Kind::kCommand, bus::Encode(ReadyCommand())));
  Complete();
  ASSERT_EQ(sent_.size(), 2U);
  EXPECT_EQ(bus::Decode<wire::Reply>(sent_[0].second.payload)->transport, wire::Transport::kGone);
  EXPECT_EQ(sent_[1].second.kind, bus::Kind::kUnplugged);
  EXPECT_TRUE(bus::Decode<std::vector<bus::CameraStatus>>(Answered(1, bus::Kind::kStatus, {}).payload)->empty());
}

TEST_F(BusTest, TakesFaultsBack) {
  Plug("A");
  Answered(1, bus::Kind::kStartSession, bus::EncodeNumber(1));
  Answered(1, bus::Kind::kFault, bus::Encode(bus::FaultRequest{"A", "fail", 1}));
  EXPECT_EQ(Answered(1, bus::Kind::kFault, bus::Encode(bus::FaultRequest{"A", "none", 1})).kind, bus::Kind::kOk);
  EXPECT_TRUE(Ask(1, bus::Kind::kCommand, bus::Encode(ReadyCommand())));
  Complete();
  EXPECT_TRUE(LastReply().Good());
}

TEST_F(BusTest, CountsCommandsInItsStatus) {
  Plug("A");
  Answered(1, bus::Kind::kStartSession, bus::EncodeNumber(1));
  EXPECT_TRUE(Ask(1, bus::Kind::kCommand, bus::Encode(ReadyCommand())));
  Complete();
  EXPECT_EQ(bus::Decode<std::vector<bus::CameraStatus>>(Answered(2, bus::Kind::kStatus, {}).payload)->at(0).commands,
            1U);
}

}  // namespace
}  // namespace vcam::server

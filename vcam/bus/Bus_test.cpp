#include "vcam/bus/Bus.h"

#include <gmock/gmock.h>
#include <poll.h>

#include "vcam/bus/FrameReader.h"
#include "vcam/device/TestSupport.h"

namespace vcam::bus {
namespace {

using testing::HasSubstr;

class BusTest : public testing::Test {
 protected:
  BusTest() {
    for (const PeerId peer : {1U, 2U}) {
      bus_.AddPeer(peer, static_cast<pid_t>(1000 + peer));
      EXPECT_TRUE(Ask(peer, Kind::kHello, EncodeNumber(1)));
      sent_.clear();
    }
  }

  bool Ask(PeerId peer, Kind kind, const Bytes& payload) { return bus_.Handle(peer, {kind, 7, payload}); }

  /// Asks what is answered at once.
  Frame Answered(PeerId peer, Kind kind, const Bytes& payload) {
    sent_.clear();
    EXPECT_TRUE(Ask(peer, kind, payload));
    return sent_.empty() ? Frame{} : sent_.back().second;
  }
  ErrorAnswer Refused(PeerId peer, Kind kind, const Bytes& payload) {
    const Frame answer = Answered(peer, kind, payload);
    EXPECT_EQ(answer.kind, Kind::kError);
    return DecodeError(answer.payload).value_or(ErrorAnswer{});
  }

  PlugRequest PlugOf(const std::string& serial) const { return {serial, scratch_.path().string(), "", "", 3}; }
  void Plug(const std::string& serial) {
    EXPECT_EQ(Answered(1, Kind::kPlug, Encode(PlugOf(serial))).kind, Kind::kOk);
    sent_.clear();
  }

  static Command ReadyCommand() {
    Command command = test::Block({0xC6, 0, 0x04});
    command.direction = Direction::kFromCamera;
    command.length = 4;
    return command;
  }
  /// Waits for the camera's thread.
  void Complete() {
    pollfd readable{bus_.Descriptor(), POLLIN, 0};
    ASSERT_EQ(::poll(&readable, 1, 10'000), 1);
    bus_.TakeCompletions();
  }
  Reply LastReply() {
    EXPECT_FALSE(sent_.empty());
    if (sent_.empty()) return {};
    EXPECT_EQ(sent_.back().second.kind, Kind::kReply);
    return DecodeReply(sent_.back().second.payload).value_or(Reply{});
  }

  test::ScratchStorage scratch_;
  std::vector<std::pair<PeerId, Frame>> sent_;
  Bus bus_{[this](PeerId peer, const Bytes& bytes) {
    FrameReader reader;
    reader.Feed(bytes);
    sent_.emplace_back(peer, reader.Next().value());
  }};
};

TEST_F(BusTest, WantsAGreetingFirst) {
  bus_.AddPeer(3, 1003);
  EXPECT_FALSE(Ask(3, Kind::kStatus, {}));
  EXPECT_THAT(Refused(3, Kind::kHello, EncodeNumber(2)).sentence, HasSubstr("version 1"));
  EXPECT_FALSE(Ask(3, Kind::kStatus, {})) << "the greeting was refused";
  EXPECT_FALSE(Ask(3, Kind::kHello, {1})) << "no number";
}

TEST_F(BusTest, TellsSubscribersWhatIsPresentAndWhatChanges) {
  Plug("A");
  EXPECT_TRUE(Ask(2, Kind::kSubscribe, {}));
  ASSERT_EQ(sent_.size(), 2U);
  EXPECT_EQ(sent_[0].second.kind, Kind::kPlugged);
  EXPECT_EQ(DecodeStatus(sent_[0].second.payload)->serial, "A");
  EXPECT_EQ(sent_[1].second.kind, Kind::kOk);
  sent_.clear();
  EXPECT_TRUE(Ask(1, Kind::kPlug, Encode(PlugOf("B"))));
  ASSERT_EQ(sent_.size(), 2U);
  EXPECT_EQ(sent_[0].first, 2U) << "the subscriber hears of it before the one who asked";
  EXPECT_EQ(sent_[0].second.tag, 0U);
  sent_.clear();
  EXPECT_TRUE(Ask(1, Kind::kUnplug, EncodeText("A")));
  ASSERT_EQ(sent_.size(), 2U);
  EXPECT_EQ(sent_[0].second.kind, Kind::kUnplugged);
  EXPECT_EQ(DecodeNumber(sent_[0].second.payload), 1U);
}

TEST_F(BusTest, RefusesCamerasThatCannotBe) {
  Plug("A");
  EXPECT_EQ(Refused(1, Kind::kPlug, Encode(PlugOf("A"))).code, ErrorCode::kBusy);
  EXPECT_EQ(Refused(1, Kind::kPlug, Encode(PlugOf(""))).code, ErrorCode::kRefused);
  EXPECT_EQ(Refused(1, Kind::kPlug, Encode(PlugOf(std::string(127, 'x')))).code, ErrorCode::kRefused);
  PlugRequest nowhere = PlugOf("B");
  nowhere.storage = "/nonexistent";
  EXPECT_THAT(Refused(1, Kind::kPlug, Encode(nowhere)).sentence, HasSubstr("/nonexistent"));
  PlugRequest odd = PlugOf("B");
  odd.catalogue = "odd";
  EXPECT_THAT(Refused(1, Kind::kPlug, Encode(odd)).sentence, HasSubstr("odd"));
}

TEST_F(BusTest, SaysWhatItDoesNotKnow) {
  EXPECT_EQ(Refused(1, Kind::kUnplug, EncodeText("X")).code, ErrorCode::kNoSuchCamera);
  EXPECT_EQ(Refused(1, Kind::kFault, Encode(FaultRequest{"X", "fail", 1})).code, ErrorCode::kNoSuchCamera);
  EXPECT_EQ(Refused(1, Kind::kStartSession, EncodeNumber(99)).code, ErrorCode::kNoSuchCamera);
  Plug("A");
  EXPECT_THAT(Refused(1, Kind::kFault, Encode(FaultRequest{"A", "boo", 1})).sentence, HasSubstr("stall"));
}

TEST_F(BusTest, CutsOffPeersThatSendWhatIsNoRequest) {
  for (const Kind kind : {Kind::kPlug, Kind::kUnplug, Kind::kFault, Kind::kStartSession, Kind::kCommand})
    EXPECT_FALSE(Ask(1, kind, {1})) << int(kind);
  for (const Kind kind : {Kind::kSubscribe, Kind::kStatus, Kind::kEndSession}) EXPECT_FALSE(Ask(1, kind, {1}));
  EXPECT_FALSE(Ask(1, Kind::kOk, {}));
  EXPECT_FALSE(Ask(1, static_cast<Kind>(200), {}));
}

TEST_F(BusTest, GivesASessionToOnePeerAndSaysWhoHasIt) {
  Plug("A");
  EXPECT_EQ(Answered(1, Kind::kStartSession, EncodeNumber(1)).kind, Kind::kOk);
  EXPECT_FALSE(Ask(1, Kind::kStartSession, EncodeNumber(1))) << "one session per connection";
  const ErrorAnswer busy = Refused(2, Kind::kStartSession, EncodeNumber(1));
  EXPECT_EQ(busy.code, ErrorCode::kBusy);
  EXPECT_THAT(busy.sentence, HasSubstr("process 1001"));
  const auto list = DecodeStatusList(Answered(2, Kind::kStatus, {}).payload);
  EXPECT_EQ(list->at(0).holder, 1001U);
  EXPECT_EQ(Answered(1, Kind::kEndSession, {}).kind, Kind::kOk);
  EXPECT_EQ(Answered(2, Kind::kStartSession, EncodeNumber(1)).kind, Kind::kOk);
}

TEST_F(BusTest, EndsTheSessionOfAPeerThatGoes) {
  Plug("A");
  EXPECT_EQ(Answered(1, Kind::kStartSession, EncodeNumber(1)).kind, Kind::kOk);
  bus_.RemovePeer(1);
  EXPECT_EQ(Answered(2, Kind::kStartSession, EncodeNumber(1)).kind, Kind::kOk);
}

TEST_F(BusTest, RunsACommandAndAnswersIt) {
  Plug("A");
  Answered(1, Kind::kStartSession, EncodeNumber(1));
  EXPECT_TRUE(Ask(1, Kind::kCommand, Encode(ReadyCommand())));
  Complete();
  EXPECT_EQ(LastReply().data, (Bytes{1, 0, 0, 0}));
  EXPECT_EQ(sent_.back().second.tag, 7U);
}

TEST_F(BusTest, AnswersACommandWithoutSessionAsGone) {
  EXPECT_TRUE(Ask(1, Kind::kCommand, Encode(ReadyCommand())));
  EXPECT_EQ(LastReply().transport, Transport::kGone);
}

TEST_F(BusTest, HoldsACommandThatHangsUntilTheUnplug) {
  Plug("A");
  Answered(1, Kind::kStartSession, EncodeNumber(1));
  Answered(2, Kind::kFault, Encode(FaultRequest{"A", "hang", 1}));
  sent_.clear();
  EXPECT_TRUE(Ask(1, Kind::kCommand, Encode(ReadyCommand())));
  Complete();
  EXPECT_TRUE(sent_.empty());
  EXPECT_TRUE(Ask(2, Kind::kUnplug, EncodeText("A")));
  EXPECT_EQ(sent_[0].first, 1U);
  EXPECT_EQ(DecodeReply(sent_[0].second.payload)->transport, Transport::kGone);
  EXPECT_TRUE(Ask(1, Kind::kCommand, Encode(ReadyCommand())));
  EXPECT_EQ(LastReply().transport, Transport::kGone);
}

TEST_F(BusTest, LetsAHostGiveACommandUp) {
  Plug("A");
  Answered(1, Kind::kStartSession, EncodeNumber(1));
  Answered(2, Kind::kFault, Encode(FaultRequest{"A", "hang", 1}));
  EXPECT_TRUE(Ask(1, Kind::kCommand, Encode(ReadyCommand())));
  Complete();
  EXPECT_TRUE(Ask(1, Kind::kCommand, Encode(ReadyCommand())));
  Complete();
  EXPECT_TRUE(LastReply().Good());
}

TEST_F(BusTest, LetsAHostGiveUpACommandThatIsStillRunning) {
  Plug("A");
  Answered(1, Kind::kStartSession, EncodeNumber(1));
  // Nothing is taken from the camera's thread in between, so each counts as running.
  for (int i = 0; i < 4; ++i) EXPECT_TRUE(Ask(1, Kind::kCommand, Encode(ReadyCommand())));
  EXPECT_FALSE(Ask(1, Kind::kCommand, Encode(ReadyCommand()))) << "too many at once";
}

TEST_F(BusTest, WaitsAsLongAsASlowCommandTakes) {
  Plug("A");
  Answered(1, Kind::kStartSession, EncodeNumber(1));
  Answered(2, Kind::kFault, Encode(FaultRequest{"A", "slow", 3'600'000}));
  sent_.clear();
  EXPECT_EQ(bus_.NextDue(), Bus::Clock::time_point::max());
  EXPECT_TRUE(Ask(1, Kind::kCommand, Encode(ReadyCommand())));
  Complete();
  bus_.SendDue();
  EXPECT_TRUE(sent_.empty());
  EXPECT_GT(bus_.NextDue(), Bus::Clock::now() + std::chrono::minutes(50));
}

TEST_F(BusTest, UnplugsACameraThatLeavesInMidCommand) {
  Plug("A");
  EXPECT_TRUE(Ask(2, Kind::kSubscribe, {}));
  Answered(1, Kind::kStartSession, EncodeNumber(1));
  Answered(2, Kind::kFault, Encode(FaultRequest{"A", "unplug", 2}));
  sent_.clear();
  EXPECT_TRUE(Ask(1, Kind::kCommand, Encode(ReadyCommand())));
  Complete();
  ASSERT_EQ(sent_.size(), 2U);
  EXPECT_EQ(DecodeReply(sent_[0].second.payload)->transport, Transport::kGone);
  EXPECT_EQ(sent_[1].second.kind, Kind::kUnplugged);
  EXPECT_TRUE(DecodeStatusList(Answered(1, Kind::kStatus, {}).payload)->empty());
}

TEST_F(BusTest, TakesFaultsBack) {
  Plug("A");
  Answered(1, Kind::kStartSession, EncodeNumber(1));
  Answered(1, Kind::kFault, Encode(FaultRequest{"A", "fail", 1}));
  EXPECT_EQ(Answered(1, Kind::kFault, Encode(FaultRequest{"A", "none", 1})).kind, Kind::kOk);
  EXPECT_TRUE(Ask(1, Kind::kCommand, Encode(ReadyCommand())));
  Complete();
  EXPECT_TRUE(LastReply().Good());
}

TEST_F(BusTest, CountsCommandsInItsStatus) {
  Plug("A");
  Answered(1, Kind::kStartSession, EncodeNumber(1));
  EXPECT_TRUE(Ask(1, Kind::kCommand, Encode(ReadyCommand())));
  Complete();
  EXPECT_EQ(DecodeStatusList(Answered(2, Kind::kStatus, {}).payload)->at(0).commands, 1U);
}

}  // namespace
}  // namespace vcam::bus

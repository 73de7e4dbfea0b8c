#include "Traced.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <stdexcept>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

// What an observer is told of each exchange, and that the camera around another one passes everything on. That commands go
// alike with and without an observer is part of every sweep of faults (testing/FaultSweep.h).

namespace {

using namespace wifi_testing;
using kelva::Exchange;

/// What is left of an exchange when the call is over.
struct Kept {
  Exchange exchange;
  std::string payload;
  std::string error;
};

class TracedTest : public testing::Test {
 protected:
  void Wrap() {
    traced_ = kelva::Traced(script_, {.ended = [this](const Exchange& exchange) { Keep(ended_, exchange); },
                                      .began = [this](const Exchange& exchange) { Keep(began_, exchange); }});
  }

  static void Keep(std::vector<Kept>& kept, const Exchange& exchange) {
    kept.push_back(
        {exchange, std::string(exchange.payload.begin(), exchange.payload.end()), std::string(exchange.error)});
  }

  const boost::shared_ptr<ScriptedCamera> script_ = boost::make_shared<ScriptedCamera>(4, 8);
  boost::shared_ptr<Camera> traced_;
  std::vector<Kept> began_;
  std::vector<Kept> ended_;
};

TEST_F(TracedTest, TellsBlockSizesAndBytesOfAnAnswer) {
  script_->Expect({0xC6, 0, 5}).Asks(4).Answers({7, 0, 0, 0});
  Wrap();
  EXPECT_EQ(traced_->GetDoneCmdCount(), 7);
  ASSERT_EQ(ended_.size(), 1U);
  const Exchange& exchange = ended_[0].exchange;
  EXPECT_EQ(Hex({exchange.block.bytes, exchange.block.bytes + 16}), Hex(Bytes({0xC6, 0, 5}) + std::string(13, '\0')));
  EXPECT_EQ(exchange.direction, 2);
  EXPECT_EQ(exchange.asked, 4);
  EXPECT_EQ(exchange.moved, 4);
  EXPECT_EQ(exchange.result, Exchange::Result::kDone);
  EXPECT_FALSE(exchange.codes);
  EXPECT_EQ(ended_[0].error, "");
  EXPECT_EQ(ended_[0].payload, Bytes({7, 0, 0, 0}));
  EXPECT_GE(exchange.took.count(), 0);
  EXPECT_GT(exchange.begin.time_since_epoch().count(), 0);
}

TEST_F(TracedTest, TellsTheBytesThatAreSentWhenAnExchangeBeginsAndWhenItEnds) {
  script_->Expect({0xC0, 0, 0xFF}).Sends(Text("led on"));
  Wrap();
  EXPECT_TRUE(traced_->MonitorCmd("led on"));
  ASSERT_EQ(began_.size(), 1U);
  EXPECT_EQ(began_[0].payload, Text("led on"));
  EXPECT_EQ(began_[0].exchange.asked, 7);
  ASSERT_EQ(ended_.size(), 1U);
  EXPECT_EQ(ended_[0].payload, Text("led on"));
}

TEST_F(TracedTest, ATextWithoutADataPhaseIsNotAmongTheBytesThatTravel) {
  script_->Expect({0xC0, 0, 0x0B}).Holds(Text("WPA2"));
  Wrap();
  EXPECT_TRUE(traced_->SetWifiAuthType(_VscWifiType(1), _VscWifiAuthType(0)));
  ASSERT_EQ(ended_.size(), 1U);
  EXPECT_EQ(ended_[0].exchange.direction, 0);
  EXPECT_EQ(ended_[0].exchange.asked, 5);
  EXPECT_EQ(ended_[0].payload, "");
}

TEST_F(TracedTest, ACountBeyondTheRoomGivesNoMoreBytesThanWereAsked) {
  script_->Expect({0xC6, 0, 4}).Asks(4).Answers({1, 0, 0, 0}).Moves(1'000'000);
  script_->Expect({0xC6, 0, 4}).Asks(4).Answers({1, 0, 0, 0}).Moves(-1);
  Wrap();
  EXPECT_THROW(traced_->IsReady(), CameraError);
  EXPECT_THROW(traced_->IsReady(), CameraError);
  ASSERT_EQ(ended_.size(), 2U);
  EXPECT_EQ(ended_[0].exchange.moved, 1'000'000);
  EXPECT_EQ(ended_[0].payload.size(), 4U);
  EXPECT_EQ(ended_[1].exchange.moved, -1);
  EXPECT_EQ(ended_[1].payload, "");
}

TEST_F(TracedTest, AFailureGoesOnUnchangedAndItsCodesAreTold) {
  const std::string text =
      "Transfer error\nCDB=[c0 00 03 00 00 00 00 00 00 00 00 00 00 00 00 00]\nret=0xe00002c0 result.status=0x20050002";
  script_->Expect({0xC0, 0, 3}).Throws(text);
  Wrap();
  EXPECT_EQ(Thrown([this] { traced_->Reboot(); }), "CameraTransferError: Camera error: " + text);
  ASSERT_EQ(ended_.size(), 1U);
  EXPECT_EQ(ended_[0].exchange.result, Exchange::Result::kFailed);
  EXPECT_EQ(ended_[0].error, "Camera error: " + text);
  ASSERT_TRUE(ended_[0].exchange.codes);
  EXPECT_EQ(ended_[0].exchange.codes->returnCode, -0x1FFFFD40);
  EXPECT_EQ(ended_[0].exchange.codes->status, 0x20050002U);
  EXPECT_EQ(ended_[0].exchange.moved, 0);
}

TEST_F(TracedTest, AFailureOfAnotherTransportHasItsTextAlone) {
  script_->Expect({0xC0, 0, 3}).Throws("no network");
  Wrap();
  EXPECT_THROW(traced_->Reboot(), CameraTransferError);
  ASSERT_EQ(ended_.size(), 1U);
  EXPECT_FALSE(ended_[0].exchange.codes);
  EXPECT_EQ(ended_[0].error, "Camera error: no network");
}

TEST_F(TracedTest, AnExceptionThatIsNoStandardOneIsToldWithoutText) {
  script_->Expect({0xC0, 0, 3}).Then([] { throw 5; });
  Wrap();
  EXPECT_THROW(traced_->Reboot(), int);
  ASSERT_EQ(ended_.size(), 1U);
  EXPECT_EQ(ended_[0].exchange.result, Exchange::Result::kFailed);
}

TEST_F(TracedTest, ATransportThatReturnsFalseIsTold) {
  script_->Expect({0xC0, 0, 0x00}).ReturnsFalse();
  Wrap();
  EXPECT_FALSE(traced_->CaptureImage(true));
  ASSERT_EQ(ended_.size(), 1U);
  EXPECT_EQ(ended_[0].exchange.result, Exchange::Result::kFalse);
}

TEST_F(TracedTest, AnExchangeThatNeverEndsHasBegun) {
  script_->Expect({0xC0, 0, 3}).Then([this] {
    ASSERT_EQ(began_.size(), 1U);
    EXPECT_EQ(began_[0].exchange.block.bytes[2], 3);
    EXPECT_TRUE(ended_.empty());
  });
  Wrap();
  traced_->Reboot();
}

TEST_F(TracedTest, AFunctionThatThrowsChangesNothing) {
  script_->Expect({0xC6, 0, 4}).Asks(4).Answers({1, 0, 0, 0});
  script_->Expect({0xC0, 0, 3}).Throws("cut");
  const auto fail = [](const Exchange&) { throw std::runtime_error("disk full"); };
  traced_ = kelva::Traced(script_, {.ended = fail, .began = fail});
  EXPECT_TRUE(traced_->IsReady());
  EXPECT_EQ(Thrown([this] { traced_->Reboot(); }), "CameraTransferError: Camera error: cut");
}

TEST_F(TracedTest, FunctionsMayBeEmpty) {
  script_->Expect({0xC0, 0, 3});
  traced_ = kelva::Traced(script_, {});
  traced_->Reboot();
}

TEST_F(TracedTest, ReadsInTheChunksOfTheCameraItIsAround) {
  script_->Expect({0xC2, 0, 1}).Sends(Text("F"));
  script_->Expect({0xC6, 0, 0}).Asks(4).Answers({6, 0, 0, 0});
  script_->Expect({0xC4, 0, 1}).Asks(4).Answers("abcd");
  script_->Expect({0xC4, 0, 1, 4}).Asks(4).Answers("ef");
  Wrap();
  Progress progress;
  EXPECT_EQ(ToString(traced_->ReadFile("F", Progress::Report, &progress, true)), "abcdef");
  EXPECT_EQ(progress.fractions, std::vector<float>{0});
  EXPECT_EQ(ended_.size(), 4U);
}

/// Answers differently from the scripted camera, and notes what is passed on to it.
class NotingCamera : public PlainCamera {
 public:
  std::string Name() const override { return "Noting"; }
  std::string MountPath() const override { return "/media/noting"; }
  void ListenForCameraLost(void (*callback)(void*), void* context) override { callback(context); }
  bool WasDisconnected() override { return true; }
  bool IsScsiInquiryCorrect() const override { return false; }
  bool Cancel(bool first, bool second) override { return first && !second; }
  bool CompareSn(const char* serial) const override { return std::string(serial) == "N1"; }
  bool Transfer(const _VscCdb&, int, int& size, char*, bool flag) override {
    calls.emplace_back(std::string(flag ? "true" : "false") + (hexDump_ ? " dumped" : ""));
    size = 0;
    return true;
  }
};

TEST(Traced, PassesEverythingElseOn) {
  const auto camera = boost::make_shared<NotingCamera>();
  camera->open = false;
  const boost::shared_ptr<Camera> traced = kelva::Traced(camera, {});
  EXPECT_EQ(traced->Name(), "Noting");
  EXPECT_EQ(traced->MountPath(), "/media/noting");
  EXPECT_FALSE(traced->IsOpen());
  EXPECT_TRUE(traced->Open());
  EXPECT_TRUE(camera->open);
  EXPECT_TRUE(traced->IsOpen());
  traced->Close();
  EXPECT_FALSE(camera->open);
  EXPECT_TRUE(traced->WasDisconnected());
  EXPECT_FALSE(traced->IsScsiInquiryCorrect());
  EXPECT_TRUE(traced->Cancel(true, false));
  EXPECT_FALSE(traced->Cancel(true, true));
  EXPECT_TRUE(traced->CompareSn("N1"));
  EXPECT_FALSE(traced->CompareSn("N2"));
  EXPECT_FALSE(*traced == *traced);
  bool lost = false;
  traced->ListenForCameraLost([](void* context) { *static_cast<bool*>(context) = true; }, &lost);
  EXPECT_TRUE(lost);
  camera->calls.clear();
  traced->CaptureImage(false);
  traced->CaptureImage(true);
  EXPECT_EQ(camera->calls, (Calls{"ClearCancel false", "false", "ClearCancel true", "true"}));
}

TEST(Traced, HandsOnTheHexDumpSwitchAndBeginsWithTheCamerasOwn) {
  const auto camera = boost::make_shared<NotingCamera>();
  camera->enableHexDump();
  const boost::shared_ptr<Camera> traced = kelva::Traced(camera, {});
  traced->Reboot();
  EXPECT_TRUE(traced->disableHexDump());
  traced->Reboot();
  EXPECT_EQ(camera->calls, (Calls{"ClearCancel true", "true dumped", "ClearCancel true", "true"}));
}

TEST(Traced, SharesTheCameraItIsAround) {
  const auto camera = boost::make_shared<NotingCamera>();
  boost::shared_ptr<Camera> traced = kelva::Traced(camera, {});
  EXPECT_EQ(camera.use_count(), 2);
  traced.reset();
  EXPECT_EQ(camera.use_count(), 1);
}

}  // namespace

#include "apps/camera/Turns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <memory>
#include <thread>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/testing/SilentContext.h"
#include "base/testing/ScratchFolder.h"
#include "darwin/virtual/VirtualRegistry.h"
#include "src/wifi/CameraError.h"
#include "src/wifi/testing/Bytes.h"
#include "vcam/camera/InProcess.h"

namespace apps {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr Turns::Length kAtOnce{0ms, 0ms};
constexpr Turns::Length kWhenAwaited{0ms, 1h};

class TurnsTest : public testing::Test, protected SilentContext {
 protected:
  TurnsTest() {
    context_.lineOf = [this](const std::string&) { return line_; };
    context_.holdersOf = [this](const std::string&) {
      if (onLook) onLook();
      return holder;
    };
    Plug();
  }

  void Plug() {
    vcam::Options options;
    options.serial = "K1";
    options.storage = storage_.Path();
    device_ = std::make_shared<vcam::VirtualCamera>(options);
    darwin::CameraDescription description{"K1", "Kelva", "Camera", "1.00", 3, {}};
    description.openUserClient = vcam::OpenInProcess(device_);
    entry_ = registry_.AttachCamera(description);
  }
  AttachedCamera K1() { return Choose(FindAttached(diversion_), "K1"); }

  Failure WhyNot(std::chrono::milliseconds patience) {
    try {
      const Turns turns(context_, K1(), patience);
    } catch (const Failure& failure) {
      return failure;
    }
    return {ExitCode::kDone, "no error"};
  }

  const base::ScratchFolder storage_;
  const LinePlace line_{storage_.Path().string(), "K1"};
  darwin::VirtualRegistry registry_;
  std::shared_ptr<vcam::VirtualCamera> device_;
  darwin::EntryId entry_{};
  std::string holder = "photos (process 7)";
  std::function<void()> onLook;  // when somebody asks who holds the camera
};

TEST_F(TurnsTest, AFreeCameraIsOpenedWithoutAWait) {
  context_.lineOf = [](const std::string&) -> std::optional<LinePlace> { throw std::logic_error("not asked"); };
  const Turns turns(context_, K1(), 0ms);
  EXPECT_TRUE(turns.Attached().camera->IsOpen());
  EXPECT_FALSE(device_->StartSession());
}

TEST_F(TurnsTest, AHolderThatNeverLetsGoIsNamed) {
  ASSERT_TRUE(device_->StartSession());
  for (const auto patience : {0ms, 30ms}) {
    const Failure failure = WhyNot(patience);
    EXPECT_EQ(failure.Code(), ExitCode::kBusy);
    EXPECT_STREQ(failure.what(),
                 "Camera K1 is held by photos (process 7); wait until it has finished, or close it. A longer "
                 "--wait-busy waits longer.");
  }
  EXPECT_THAT(Said(), IsEmpty());
}

TEST_F(TurnsTest, ACameraThatIsGivenUpIsTaken) {
  ASSERT_TRUE(device_->StartSession());
  int looks = 0;
  onLook = [&] {
    if (++looks == 3) device_->EndSession();
  };
  const Turns turns(context_, K1(), 1h);
  EXPECT_EQ(looks, 3);
  EXPECT_THAT(Said(), HasSubstr("Waiting for photos (process 7), which holds the camera ..."));
}

TEST_F(TurnsTest, WhoWaitsIsToldOfALongFile) {
  ASSERT_TRUE(device_->StartSession());
  WaitingLine holding(line_);
  holding.HoldForLong(true);
  int looks = 0;
  onLook = [&] {
    if (++looks == 3) device_->EndSession();
  };
  const Turns turns(context_, K1(), 1h);
  EXPECT_THAT(Said(), HasSubstr("Waiting for photos (process 7), which holds the camera for one long file ..."));
}

// It gave the camera up between the attempt to open it and the question who has it.
TEST_F(TurnsTest, AHolderThatIsNotSeenAnyMoreHasGivenTheCameraUp) {
  ASSERT_TRUE(device_->StartSession());
  holder = "";
  onLook = [&] { device_->EndSession(); };
  EXPECT_EQ(WhyNot(0ms).Code(), ExitCode::kDone);
}

TEST_F(TurnsTest, ACameraThatNobodyIsSeenToHoldStaysHeld) {
  ASSERT_TRUE(device_->StartSession());
  holder = "";
  const Failure failure = WhyNot(0ms);
  EXPECT_EQ(failure.Code(), ExitCode::kBusy);
  EXPECT_THAT(failure.what(), HasSubstr("`kelva doctor` says which"));
}

TEST_F(TurnsTest, ACameraThatGoesWhileSomebodyWaitsHasGone) {
  ASSERT_TRUE(device_->StartSession());
  onLook = [&] { registry_.Detach(entry_); };
  const Failure failure = WhyNot(1h);
  EXPECT_EQ(failure.Code(), ExitCode::kGone);
  EXPECT_STREQ(failure.what(), "Camera K1 went away before it could be opened; plug it in again.");
}

TEST_F(TurnsTest, ACameraThatIsPluggedInAgainWhileSomebodyWaitsIsTaken) {
  ASSERT_TRUE(device_->StartSession());
  onLook = [&] {
    registry_.Detach(entry_);
    Plug();
    onLook = nullptr;
  };
  EXPECT_EQ(WhyNot(1h).Code(), ExitCode::kDone);
}

TEST_F(TurnsTest, ARequestToStopEndsAWait) {
  ASSERT_TRUE(device_->StartSession());
  onLook = [&] { stop_.Request(); };
  EXPECT_THROW(WhyNot(1h), Stopped);
}

TEST_F(TurnsTest, ATimeToWaitCountsFromTheEndOfALongFile) {
  ASSERT_TRUE(device_->StartSession());
  WaitingLine holding(line_);
  holding.HoldForLong(true);
  int looks = 0;
  onLook = [&] {
    if (++looks == 3) holding.HoldForLong(false);
  };
  EXPECT_EQ(WhyNot(1ms).Code(), ExitCode::kBusy);
  EXPECT_GT(looks, 3);
}

TEST_F(TurnsTest, AWordThatIsNoTimeIsAWrongCommandLine) {
  EXPECT_EQ(WaitBusy(context_), 10s);
  call_.Add("wait-busy", "0");
  EXPECT_EQ(WaitBusy(context_), 0s);
  call_.Add("wait-busy", "2.5");
  EXPECT_EQ(WaitBusy(context_), 2500ms);
  call_.Add("wait-busy", "soon");
  EXPECT_THROW(WaitBusy(context_), Failure);
}

TEST_F(TurnsTest, AShortTurnGoesOn) {
  Turns turns(context_, K1(), 0ms);
  WaitingLine waiter(line_);
  waiter.Join();
  EXPECT_FALSE(LetOthers(context_));
}

TEST_F(TurnsTest, WorkThatNobodyWaitsForGoesOn) {
  Turns turns(context_, K1(), 0ms, kWhenAwaited);
  EXPECT_FALSE(LetOthers(context_));
}

TEST_F(TurnsTest, AfterAWhileTheCameraIsGivenUpInAnyCase) {
  Turns turns(context_, K1(), 0ms, kAtOnce);
  EXPECT_TRUE(LetOthers(context_));
  EXPECT_TRUE(turns.Attached().camera->IsOpen());
}

TEST_F(TurnsTest, WhoWaitsGetsTheNextTurn) {
  Turns turns(context_, K1(), 0ms, kWhenAwaited);
  WaitingLine waiter(line_);
  waiter.Join();
  bool hadItsTurn = false;
  std::thread other([&] {
    const auto until = std::chrono::steady_clock::now() + 10s;
    while (!hadItsTurn && std::chrono::steady_clock::now() < until) hadItsTurn = device_->StartSession();
    waiter.Leave();
    if (hadItsTurn) device_->EndSession();
  });
  EXPECT_TRUE(LetOthers(context_));
  other.join();
  EXPECT_TRUE(hadItsTurn);
  EXPECT_FALSE(waiter.IsAwaited()) << "nobody is in line after a turn has begun";
}

TEST_F(TurnsTest, APersonWhoIsAskedKeepsNobodyOut) {
  const auto tryIt = [this] {
    EXPECT_TRUE(device_->StartSession());
    device_->EndSession();
  };
  WithoutCamera(context_, tryIt);
  const Turns turns(context_, K1(), 0ms);
  WithoutCamera(context_, tryIt);
  EXPECT_TRUE(turns.Attached().camera->IsOpen());
  EXPECT_THROW(WithoutCamera(context_, [] { throw Stopped(); }), Stopped);
  EXPECT_FALSE(turns.Attached().camera->IsOpen());
}

TEST_F(TurnsTest, ACameraThatGoesDuringAnothersTurnHasGone) {
  Turns turns(context_, K1(), 0ms, kAtOnce);
  registry_.Detach(entry_);
  try {
    LetOthers(context_);
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Code(), ExitCode::kGone);
    EXPECT_STREQ(failure.what(), "Camera K1 went away while another program had its turn; plug it in again.");
  }
}

TEST_F(TurnsTest, ACameraThatWasPluggedInAgainIsNotTheOneThatWorkBeganWith) {
  Turns turns(context_, K1(), 0ms, kAtOnce);
  registry_.Detach(entry_);
  Plug();
  EXPECT_THROW(LetOthers(context_), Failure);
}

TEST_F(TurnsTest, WithoutAnOpenCameraThereIsNothingToGiveUp) {
  EXPECT_FALSE(LetOthers(context_));
  HoldForLong(context_);
  {
    const Turns turns(context_, K1(), 0ms, kAtOnce);
    EXPECT_EQ(context_.turns, &turns);
  }
  EXPECT_EQ(context_.turns, nullptr);
}

class TurnsInAFileTest : public testing::Test, protected SilentContext {
 protected:
  TurnsInAFileTest() {
    context_.lineOf = [this](const std::string&) { return line_; };
    camera_->files["A"] = wifi_testing::Pattern(300'000);
  }

  std::size_t Read(kelva::FileReader& reader) {
    const std::size_t count = reader.ReadOn(piece_);
    LetOthers(context_, reader, std::span(piece_).first(count));
    return count;
  }

  const base::ScratchFolder folder_;
  const LinePlace line_{folder_.Path().string(), "K1"};
  const boost::shared_ptr<FakeCamera> camera_ = boost::make_shared<FakeCamera>("K1");
  std::vector<char> piece_ = std::vector<char>(65'536);
  Turns turns_{context_, {{"K1", "", "", "", ""}, camera_}, 0ms, kAtOnce};
};

TEST_F(TurnsInAFileTest, AFileGoesOnWhereItWas) {
  kelva::FileReader reader(camera_, "I:\\A");
  std::string text;
  while (const std::size_t count = Read(reader)) text.append(piece_.data(), count);
  EXPECT_EQ(text, camera_->files["A"]);
  EXPECT_GT(camera_->reads, 5);
}

TEST_F(TurnsInAFileTest, AFileThatChangedMeanwhileIsNotRead) {
  kelva::FileReader reader(camera_, "I:\\A");
  Read(reader);
  camera_->files["A"][piece_.size() - 1] ^= 1;
  EXPECT_THROW(LetOthers(context_, reader, piece_), CameraError);
}

TEST_F(TurnsInAFileTest, AFileThatIsSentForwardOnlyIsHeldToItsEnd) {
  camera_->files["B"] = std::string(300'000, '\0');  // every part is like every other, so nothing is proved
  kelva::FileReader reader(camera_, "I:\\B");
  const WaitingLine waiter(line_);
  HoldForLong(context_);
  EXPECT_TRUE(waiter.IsHeldForLong());
  EXPECT_TRUE(LetOthers(context_));
  EXPECT_FALSE(waiter.IsHeldForLong());
  reader.Select();
  ASSERT_TRUE(reader.ReadsForwardOnly());
  const int selections = camera_->reads;
  Read(reader);
  Read(reader);
  EXPECT_EQ(camera_->reads, selections);
  EXPECT_EQ(reader.Position(), 2 * piece_.size());
}

}  // namespace
}  // namespace apps

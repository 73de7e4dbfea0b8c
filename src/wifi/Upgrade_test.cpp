#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using namespace wifi_testing;

TEST(Upgrade, SendsTheImageInChunksWithTheOffsetFromByteTwo) {
  const std::string image = Pattern(200000);
  ScriptedCamera camera;
  camera.Expect({0xC1, 0x00, 0x40, 0x0D, 0x03, 0x00});
  camera.Expect({0xC5, 0x00, 0x00, 0x00, 0x00, 0x00}).Sends(image.substr(0, 65536));
  camera.Expect({0xC5, 0x00, 0x00, 0x00, 0x01, 0x00}).Sends(image.substr(65536, 65536));
  camera.Expect({0xC5, 0x00, 0x00, 0x00, 0x02, 0x00}).Sends(image.substr(131072, 65536));
  camera.Expect({0xC5, 0x00, 0x00, 0x00, 0x03, 0x00}).Sends(image.substr(196608, 3392));
  camera.Expect({0xC0, 0x00, 0x02});
  Progress progress;
  camera.Upgrade(image.data(), 200000, Progress::Report, &progress);
  EXPECT_EQ(progress.fractions, std::vector<float>{0.0f});
  EXPECT_EQ(camera.calls.front(), "ClearCancel true");
  EXPECT_EQ(camera.calls.size(), 7u);
}

TEST(Upgrade, DoesNotAskWhetherTheCameraIsOpenAndNeedsNoCallback) {
  ScriptedCamera camera;
  camera.open = false;
  camera.Expect({0xC1, 0x00, 3});
  camera.Expect({0xC5}).Sends("abc");
  camera.Expect({0xC0, 0x00, 0x02});
  camera.Upgrade("abc", 3, nullptr, nullptr);
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel true", "Transfer true", "Transfer true", "Transfer true"}));
}

TEST(Upgrade, OfNothingIsAnnouncedAndEnded) {
  ScriptedCamera camera;
  Progress progress;
  camera.Expect({0xC1, 0x00, 0, 0, 0, 0});
  camera.Expect({0xC0, 0x00, 0x02});
  camera.Upgrade("", 0, Progress::Report, &progress);
  camera.Expect({0xC1, 0x00, 0xFB, 0xFF, 0xFF, 0xFF});
  camera.Expect({0xC0, 0x00, 0x02});
  camera.Upgrade("", -5, Progress::Report, &progress);
  EXPECT_TRUE(progress.fractions.empty());
}

TEST(Upgrade, ReportsAtWholeMultiplesOfTheIntervalOnly) {
  const std::string image = Pattern(64);
  ScriptedCamera camera(16, 24);
  camera.Expect({0xC1, 0x00, 64});
  camera.Expect({0xC5, 0x00, 0}).Sends(image.substr(0, 16));
  camera.Expect({0xC5, 0x00, 16}).Sends(image.substr(16, 16));
  camera.Expect({0xC5, 0x00, 32}).Sends(image.substr(32, 16));
  camera.Expect({0xC5, 0x00, 48}).Sends(image.substr(48, 16));
  camera.Expect({0xC0, 0x00, 0x02});
  Progress progress;
  camera.Upgrade(image.data(), 64, Progress::Report, &progress);
  EXPECT_EQ(progress.fractions, (std::vector<float>{0.0f, 0.75f}));
}

TEST(Upgrade, ComputesTheFractionInSinglePrecision) {
  const std::string image = Pattern(48);
  ScriptedCamera camera(16, 16);
  camera.Expect({0xC1, 0x00, 48});
  for (const int offset : {0, 16, 32}) {
    camera.Expect({0xC5, 0x00, offset}).Sends(image.substr(static_cast<std::size_t>(offset), 16));
  }
  camera.Expect({0xC0, 0x00, 0x02});
  Progress progress;
  camera.Upgrade(image.data(), 48, Progress::Report, &progress);
  EXPECT_EQ(progress.fractions, (std::vector<float>{0.0f, 16.0f / 48.0f, 32.0f / 48.0f}));
}

TEST(Upgrade, IgnoresEveryFailedResultAndEverySizeWrittenBack) {
  const std::string image = Pattern(20);
  ScriptedCamera camera(16);
  camera.Expect({0xC1, 0x00, 20}).Fails();
  camera.Expect({0xC5, 0x00, 0}).Sends(image.substr(0, 16)).Moves(1).ReturnsFalse();
  camera.Expect({0xC5, 0x00, 16}).Sends(image.substr(16)).Moves(-1);
  camera.Expect({0xC0, 0x00, 0x02}).Fails();
  EXPECT_EQ(Thrown([&] { camera.Upgrade(image.data(), 20, nullptr, nullptr); }), "");
}

TEST(Upgrade, ATransferErrorEndsItThere) {
  ScriptedCamera camera(16);
  camera.Expect({0xC1, 0x00, 20});
  camera.Expect({0xC5}).Sends(std::string(16, 'x')).Throws("gone");
  EXPECT_EQ(Thrown([&] { camera.Upgrade(std::string(20, 'x').data(), 20, nullptr, nullptr); }),
            "CameraTransferError: Camera error: gone");
  EXPECT_EQ(camera.transfers, 2);
}

// What UpgradeStatus gave.
struct Status {
  float progress = 9.0f;
  bool first = true;
  bool second = true;
  void Ask(Camera& camera) { camera.UpgradeStatus(progress, first, second); }
};

TEST(UpgradeStatus, DecodesAFloatAndTwoFlags) {
  ScriptedCamera camera;
  Status status;
  camera.Expect({0xC6, 0x00, 0x01}).Asks(12).Answers({0, 0, 0, 0x3F, 0, 0, 0, 1, 0, 0, 0, 0});
  status.Ask(camera);
  EXPECT_EQ(status.progress, 0.5f);
  EXPECT_TRUE(status.first);
  EXPECT_FALSE(status.second);
  camera.Expect({0xC6, 0x00, 0x01}).Asks(12).Answers({0, 0, 0x80, 0x3F, 0, 0, 0, 0, 0, 1, 0, 0});
  status.Ask(camera);
  EXPECT_EQ(status.progress, 1.0f);
  EXPECT_FALSE(status.first);
  EXPECT_TRUE(status.second);
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel true", "Transfer true", "ClearCancel true", "Transfer true"}));
}

TEST(UpgradeStatus, LooksAtTheSizeAloneAndNotAtTheResult) {
  ScriptedCamera camera;
  Status status;
  camera.Expect({0xC6, 0x00, 0x01}).Asks(12).Answers({0, 0, 0, 0x3F, 1, 0, 0, 0, 1, 0, 0, 0}).ReturnsFalse();
  status.Ask(camera);
  EXPECT_EQ(status.progress, 0.5f);
}

TEST(UpgradeStatus, RefusesEveryOtherSize) {
  for (const int size : {-12, 0, 11, 13}) {
    ScriptedCamera camera;
    Status status;
    camera.Expect({0xC6, 0x00, 0x01}).Asks(12).Answers(std::string(12, '\0')).Moves(size);
    EXPECT_EQ(Thrown([&] { status.Ask(camera); }),
              "CameraError: Camera error: UpgradeStatus() response size incorrect.");
  }
}

TEST(UpgradeStatus, WithExceptionsOffDecodesWhatArrivedOverZeros) {
  const ExceptionsOff off;
  ScriptedCamera camera;
  Status status;
  camera.Expect({0xC6, 0x00, 0x01}).Asks(12).Answers({0, 0, 0, 0x3F, 1});
  status.Ask(camera);
  EXPECT_EQ(status.progress, 0.5f);
  EXPECT_TRUE(status.first);
  EXPECT_FALSE(status.second);
  camera.Expect({0xC6, 0x00, 0x01}).Asks(12).Answers("");
  status.Ask(camera);
  EXPECT_EQ(status.progress, 0.0f);
  EXPECT_FALSE(status.first);
  EXPECT_FALSE(status.second);
}

TEST(UpgradeStatus, PassesATransferErrorOn) {
  const ExceptionsOff off;
  ScriptedCamera camera;
  Status status;
  camera.Expect({0xC6, 0x00, 0x01}).Asks(12).Throws("gone");
  EXPECT_EQ(Thrown([&] { status.Ask(camera); }), "CameraTransferError: Camera error: gone");
}

}  // namespace

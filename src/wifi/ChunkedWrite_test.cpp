#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using namespace wifi_testing;

constexpr char kPath[] = "I:\\A.BIN";

void ExpectOpenedForWriting(ScriptedCamera& camera) {
  camera.Expect({0xC2, 0x00, 0x01, 0x01}).Sends(Bytes({'I', ':', '\\', 'A', '.', 'B', 'I', 'N', 0}));
}

TEST(WriteFile, OfNothingOpensAndClosesAndReportsNothing) {
  for (const int length : {0, -1}) {
    ScriptedCamera camera;
    ExpectOpenedForWriting(camera);
    camera.Expect({0xC3, 0x00, 0x00});
    Progress progress;
    camera.WriteFile(kPath, "", length, Progress::Report, &progress);
    EXPECT_TRUE(progress.fractions.empty());
    EXPECT_EQ(camera.calls, (Calls{"ClearCancel true", "Transfer true", "Transfer true"}));
  }
}

TEST(WriteFile, OfSeventyThousandBytesSendsTwoChunksWithTheOffsetFromByteTwo) {
  const std::string file = Pattern(70000);
  ScriptedCamera camera;
  ExpectOpenedForWriting(camera);
  camera.Expect({0xC5, 0x00, 0x00, 0x00, 0x00, 0x00}).Sends(file.substr(0, 65536));
  camera.Expect({0xC5, 0x00, 0x00, 0x00, 0x01, 0x00}).Sends(file.substr(65536, 4464));
  camera.Expect({0xC3, 0x00, 0x00});
  Progress progress;
  camera.WriteFile(kPath, file.data(), 70000, Progress::Report, &progress);
  EXPECT_EQ(progress.fractions, std::vector<float>{0.0f});
}

TEST(WriteFile, OfAWholeChunkSendsNoEmptyOneAfterIt) {
  ScriptedCamera camera(4);
  ExpectOpenedForWriting(camera);
  camera.Expect({0xC5, 0x00, 0}).Sends("abcd");
  camera.Expect({0xC3, 0x00, 0x00});
  camera.WriteFile(kPath, "abcd", 4, nullptr, nullptr);
}

TEST(WriteFile, DoesNotAskWhetherTheCameraIsOpen) {
  ScriptedCamera camera;
  camera.open = false;
  ExpectOpenedForWriting(camera);
  camera.Expect({0xC5}).Sends("a");
  camera.Expect({0xC3});
  camera.WriteFile(kPath, "a", 1, nullptr, nullptr);
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel true", "Transfer true", "Transfer true", "Transfer true"}));
}

TEST(WriteFile, ReportsBeforeTheChunksAtMultiplesOfTheInterval) {
  ScriptedCamera camera(4, 8);
  Progress progress;
  ExpectOpenedForWriting(camera);
  camera.Expect({0xC5, 0x00, 0}).Sends("abcd");
  camera.Expect({0xC5, 0x00, 4}).Sends("efgh");
  camera.Expect({0xC5, 0x00, 8}).Sends("ij").Then([&] { EXPECT_EQ(progress.fractions.size(), 2u); });
  camera.Expect({0xC3});
  camera.WriteFile(kPath, "abcdefghij", 10, Progress::Report, &progress);
  EXPECT_EQ(progress.fractions, (std::vector<float>{0.0f, 0.8f}));
}

// The remainder is a signed one here: every multiple of 4 is also one of -4.
TEST(WriteFile, TakesANegativeIntervalAsSigned) {
  ScriptedCamera camera(4, -4);
  Progress progress;
  ExpectOpenedForWriting(camera);
  camera.Expect({0xC5, 0x00, 0}).Sends("abcd");
  camera.Expect({0xC5, 0x00, 4}).Sends("efgh");
  camera.Expect({0xC3});
  camera.WriteFile(kPath, "abcdefgh", 8, Progress::Report, &progress);
  EXPECT_EQ(progress.fractions, (std::vector<float>{0.0f, 0.5f}));
}

TEST(WriteFile, ReadsTheIntervalAnewBeforeEachChunk) {
  ScriptedCamera camera(4, 4);
  Progress progress;
  ExpectOpenedForWriting(camera);
  camera.Expect({0xC5, 0x00, 0}).Sends("abcd").Then([&] { camera.progressInterval_ = 8; });
  camera.Expect({0xC5, 0x00, 4}).Sends("efgh");
  camera.Expect({0xC5, 0x00, 8}).Sends("ij");
  camera.Expect({0xC3});
  camera.WriteFile(kPath, "abcdefghij", 10, Progress::Report, &progress);
  EXPECT_EQ(progress.fractions, (std::vector<float>{0.0f, 0.8f}));
}

TEST(WriteFile, DoesNotStopAtAFailedCommandOrLookAtASize) {
  ScriptedCamera camera(4);
  ExpectOpenedForWriting(camera);
  camera.Expect({0xC5, 0x00, 0}).Sends("abcd").Fails();
  camera.Expect({0xC5, 0x00, 4}).Sends("efgh").Moves(1);
  camera.Expect({0xC5, 0x00, 8}).Sends("ij").Moves(-1).ReturnsFalse();
  camera.Expect({0xC3}).Fails();
  EXPECT_EQ(Thrown([&] { camera.WriteFile(kPath, "abcdefghij", 10, nullptr, nullptr); }), "");
}

TEST(WriteFile, GoesOnWhenTheFileCouldNotBeOpened) {
  ScriptedCamera camera;
  camera.Expect({0xC2, 0x00, 0x01, 0x01}).Sends(Text(kPath)).Fails();
  camera.Expect({0xC5}).Sends("a");
  camera.Expect({0xC3});
  camera.WriteFile(kPath, "a", 1, nullptr, nullptr);
}

TEST(WriteFile, ATransferErrorEndsItThereWithoutClosing) {
  const ExceptionsOff off;
  ScriptedCamera camera(4);
  ExpectOpenedForWriting(camera);
  camera.Expect({0xC5, 0x00, 0}).Sends("abcd").Throws("gone");
  EXPECT_EQ(Thrown([&] { camera.WriteFile(kPath, "abcdefgh", 8, nullptr, nullptr); }),
            "CameraTransferError: Camera error: gone");
  EXPECT_EQ(camera.transfers, 2);
}

}  // namespace

#include <chrono>
#include <thread>

#include "tests/stack/StackTest.h"

// What the library makes of a camera that goes wrong, through the whole stack.

namespace tests::stack {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using vcam::FaultKind;

class Faults : public StackTest {
 protected:
  void SetUp() override {
    StackTest::SetUp();
    storage_.Put("DCIM/file", std::string(100'000, 'x'));
  }
  std::vector<char> ReadTheFile() { return Opened().ReadFile(R"(I:\DCIM\file)", nullptr, nullptr, true); }
  /// The message of the CameraTransferError that reading the file throws.
  std::string ReadError() {
    try {
      ReadTheFile();
    } catch (const CameraTransferError& error) {
      return error.what();
    }
    return "no error";
  }
};

TEST_F(Faults, ARefusedChunkIsATransferErrorWithTheSenseData) {
  Opened();
  Arm(FaultKind::kFail, 4);
  EXPECT_THAT(ReadError(), HasSubstr("CDB=[c4 00 01 00 00 01 00 00 00 00 00 00 00 00 00 00]\n"
                                     "ret=0x00000000 result.status=0x00440402"));
  EXPECT_EQ(ReadTheFile().size(), 100'000U) << "the next read is whole again";
}

TEST_F(Faults, AStallIsATransferError) {
  Opened();
  Arm(FaultKind::kStall, 3);
  EXPECT_THAT(ReadError(), HasSubstr("ret=0x00000000 result.status=0x000007ff"));
}

TEST_F(Faults, AShortFileIsTruncated) {
  Opened();
  Arm(FaultKind::kShort, 4);
  EXPECT_THROW(ReadTheFile(), CameraError);
}

TEST_F(Faults, OneSurplusByteIsCutOff) {
  Opened();
  Arm(FaultKind::kSurplusOne, 4);
  EXPECT_EQ(AsText(ReadTheFile()), std::string(100'000, 'x'));
}

TEST_F(Faults, ALieAboutTheSizeIsTruncated) {
  Opened();
  Arm(FaultKind::kLieAboutSize);
  EXPECT_THROW(ReadTheFile(), CameraError);
}

TEST_F(Faults, UnplugInMidTransferIsAMissingDevice) {
  Opened();
  Arm(FaultKind::kUnplugAtByte, 70'000);
  EXPECT_THAT(ReadError(), HasSubstr("ret=0xe00002c0"));
  EXPECT_THROW(Opened().GetDcf(), CameraTransferError) << "and it stays so";
  HasUnpluggedItself();
}

TEST_F(Faults, ASlowCameraIsWaitedFor) {
  Opened();
  Arm(FaultKind::kSlow, 5);
  EXPECT_TRUE(Opened().IsReady());
}

TEST_F(Faults, AnAnswerWithoutEndEndsWithTheCamera) {
  Opened();
  Arm(FaultKind::kEndless);
  Arm(FaultKind::kUnplugAtByte, 1'000'000);
  EXPECT_THROW(Opened().ReadDir(R"(I:\)"), CameraTransferError);
  HasUnpluggedItself();
}

TEST_F(Faults, AWrongCountDoesNotMakeEntries) {
  Opened();
  Arm(FaultKind::kWrongCount);
  EXPECT_LE(Opened().ReadDir(R"(I:\)").size(), 10U);
  EXPECT_THROW(Opened().GetDcf(), CameraError);
}

TEST_F(Faults, AWrongOffsetDropsTheEntry) {
  Opened();
  Arm(FaultKind::kWrongOffset);
  EXPECT_THAT(Opened().ReadDir(R"(I:\)"), IsEmpty());
}

TEST_F(Faults, ANameWithoutNulEndsWithTheAnswerOrAtItsWidth) {
  storage_.Put("CRASH/A.LOG", "body");
  Opened();
  Arm(FaultKind::kUnterminatedName);
  std::vector<std::string> names;
  for (const CameraDirent& entry : Opened().ReadDir(R"(I:\)")) names.push_back(entry.name);
  EXPECT_EQ(names, (std::vector<std::string>{".A..AKELVAACRASHADCIMA", "..AKELVAACRASHADCIMA", "KELVAACRASHADCIMA",
                                             "CRASHADCIMA", "DCIMA"}));
  const std::vector<_Sha1obj> logs = Opened().ReadCrashLogs(nullptr, nullptr, false, true);
  ASSERT_EQ(logs.size(), 1U);
  EXPECT_EQ(logs[0].name, R"(I:\CRASH\A.LOG)" + std::string(14, 'A') + "body");
  EXPECT_EQ(AsText(logs[0].data), "body");
}

TEST_F(Faults, AFailedUpgradeIsReported) {
  Opened();
  Arm(FaultKind::kUpgradeFails);
  Opened().Upgrade("image", 3, nullptr, nullptr);
  float progress = 0;
  bool running = false;
  bool failed = true;
  Opened().UpgradeStatus(progress, running, failed);
  EXPECT_TRUE(running);
  EXPECT_FALSE(failed) << "not yet: it fails half-way";
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (running && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    Opened().UpgradeStatus(progress, running, failed);
  }
  EXPECT_FALSE(running);
  EXPECT_TRUE(failed);
  EXPECT_LT(progress, 1);
}

TEST_F(Faults, ASecondSessionIsRefused) {
  Opened();
  const boost::shared_ptr<Camera> second = Camera::GetCamera(kSerial, "", false, false);
  EXPECT_FALSE(second->Open());
  Opened().Close();
  EXPECT_TRUE(second->Open());
}

}  // namespace
}  // namespace tests::stack

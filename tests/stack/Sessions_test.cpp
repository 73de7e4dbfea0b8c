#include "tests/stack/PlugTest.h"

// Sessions with cameras that come, go and are held by others, and what moves in one transfer.

namespace tests::stack {
namespace {

using testing::MatchesRegex;

class Sessions : public PlugTest {};

TEST_F(Sessions, ACameraOpensAndCloses) {
  const auto camera = PlugAndOpen();
  EXPECT_TRUE(camera->IsOpen());
  camera->Close();
  EXPECT_FALSE(camera->IsOpen());
}

TEST_F(Sessions, AHeldCameraIsRefusedToASecondOwnerUntilItIsClosed) {
  const auto first = PlugAndOpen();
  const auto second = Enumerate().at(0);
  EXPECT_FALSE(second->Open());
  first->Close();
  EXPECT_TRUE(second->Open());
}

TEST_F(Sessions, ADestroyedCameraGivesItsSessionBack) {
  PlugAndOpen().reset();
  EXPECT_TRUE(Enumerate().at(0)->Open());
}

TEST_F(Sessions, TwoCamerasWorkSideBySide) {
  const auto a = PlugAndOpen("A");
  const auto b = PlugAndOpen("B");
  EXPECT_TRUE(a->IsReady());
  EXPECT_TRUE(b->IsReady());
}

TEST_F(Sessions, AQueryMovesExactlyItsAnswer) {
  const auto camera = PlugAndOpen();
  _VscCdb cdb{};
  auto* block = reinterpret_cast<unsigned char*>(&cdb);
  block[0] = 0xC6;
  block[2] = 0x04;
  std::vector<char> buffer(64, '\x55');
  int size = 4;
  EXPECT_TRUE(camera->Transfer(cdb, 2, size, buffer.data(), true));
  EXPECT_EQ(size, 4);
  EXPECT_EQ(std::string(buffer.begin() + 4, buffer.end()), std::string(60, '\x55'));
}

TEST_F(Sessions, WithoutADirectionNoByteMovesWhateverTheBuffer) {
  const auto camera = PlugAndOpen();
  _VscCdb cdb{};
  auto* block = reinterpret_cast<unsigned char*>(&cdb);
  block[0] = 0xC0;
  block[2] = 0x0B;  // the authentication type of Wi-Fi, which names a buffer and has no data phase
  std::string buffer(64, '\x55');
  int size = 64;
  EXPECT_TRUE(camera->Transfer(cdb, 0, size, buffer.data(), true));
  EXPECT_EQ(size, 0);
  EXPECT_EQ(buffer, std::string(64, '\x55'));
}

TEST_F(Sessions, ARefusedCommandGivesTheSenseOfTheCamera) {
  const auto camera = PlugAndOpen();
  _VscCdb cdb{};
  reinterpret_cast<unsigned char*>(&cdb)[0] = 0xC0;
  reinterpret_cast<unsigned char*>(&cdb)[2] = 0x77;  // no such action
  int size = 0;
  const std::string failure = FailureOf([&] { camera->Transfer(cdb, 0, size, nullptr, true); });
  EXPECT_THAT(failure, MatchesRegex("ret=0x00000000 result.status=0x[0-9a-f]{4}0502"));
}

TEST_F(Sessions, AfterAnUnplugEveryCommandFailsAndClosingIsHarmless) {
  const auto camera = PlugAndOpen();
  Unplug("K100");
  EXPECT_NE(FailureOf([&] { camera->IsReady(); }), "");
  EXPECT_FALSE(camera->MonitorCmd("x"));
  EXPECT_TRUE(camera->IsOpen());
  camera->Close();
  EXPECT_FALSE(camera->Open());
}

TEST_F(Sessions, ACameraThatIsPluggedInAgainCanBeOpenedAgain) {
  const auto before = PlugAndOpen();
  Unplug("K100");
  const auto after = PlugAndOpen();
  EXPECT_TRUE(after->IsReady());
}

}  // namespace
}  // namespace tests::stack

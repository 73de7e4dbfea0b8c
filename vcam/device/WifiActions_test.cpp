#include <gmock/gmock.h>

#include "vcam/camera/testing/CameraFixture.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

using test::Ask;
using test::AsText;
using test::Send;
using test::SendText;
using test::Tell;

class WifiActionsTest : public test::CameraFixture {};

TEST_F(WifiActionsTest, KeepsNetworkNamesInTheStateFile) {
  EXPECT_EQ(SendText(*camera_, {0xC0, 0, 0x07}, "kelva.camera.one").moved, 17U);
  EXPECT_TRUE(SendText(*camera_, {0xC0, 0, 0x08}, "kelva.camera.two").Good());
  EXPECT_THAT(scratch_.Get(".kelva/state"), testing::HasSubstr("wifi.0.ssid=kelva.camera.one\n"));
  EXPECT_THAT(scratch_.Get(".kelva/state"), testing::HasSubstr("wifi.1.ssid=kelva.camera.two\n"));
}

TEST_F(WifiActionsTest, KeepsAPassphraseOnlyAsAHash) {
  EXPECT_TRUE(SendText(*camera_, {0xC0, 0, 0x0A}, "correct horse").Good());
  const std::string state = scratch_.Get(".kelva/state");
  EXPECT_THAT(state, testing::HasSubstr("wifi.1.passphrase.sha256="
                                        "4104d36f8da2c254349f85836793ebe029e0c957063a34c91c2e9203187b5631\n"));
  EXPECT_THAT(state, testing::Not(testing::HasSubstr("horse")));
  EXPECT_THAT(AsText(Ask(*camera_, {0xC6, 0, 2}, 1000).data), testing::Not(testing::HasSubstr("horse")));
}

TEST_F(WifiActionsTest, RefusesNamesAndPassphrasesThatCannotBe) {
  EXPECT_EQ(SendText(*camera_, {0xC0, 0, 0x07}, std::string(33, 'x')).sense, sense::kBadParameter);
  EXPECT_EQ(SendText(*camera_, {0xC0, 0, 0x07}, "").sense, sense::kBadParameter);
  EXPECT_EQ(SendText(*camera_, {0xC0, 0, 0x09}, "seven77").sense, sense::kBadParameter);
  EXPECT_EQ(SendText(*camera_, {0xC0, 0, 0x09}, std::string(64, 'x')).sense, sense::kBadParameter);
  EXPECT_EQ(Tell(*camera_, {0xC0, 0, 0x09}).sense, sense::kWrongDataLength);
}

TEST_F(WifiActionsTest, TakesNamesAndPassphrasesOfEveryLengthThatCanBe) {
  for (const std::size_t length : {std::size_t{1}, std::size_t{32}}) {
    EXPECT_TRUE(SendText(*camera_, {0xC0, 0, 0x07}, std::string(length, 'x')).Good()) << length;
  }
  for (const std::size_t length : {std::size_t{8}, std::size_t{63}}) {
    EXPECT_TRUE(SendText(*camera_, {0xC0, 0, 0x09}, std::string(length, 'x')).Good()) << length;
  }
}

TEST_F(WifiActionsTest, NotesThatAnAuthTypeCommandArrived) {
  EXPECT_TRUE(Tell(*camera_, {0xC0, 0, 0x0B}).Good());
  EXPECT_TRUE(Tell(*camera_, {0xC0, 0, 0x0B}).Good());
  EXPECT_THAT(scratch_.Get(".kelva/state"), testing::HasSubstr("wifi.auth-type-commands=2\n"));
}

TEST_F(WifiActionsTest, NotesTheNumberOfAManualControl) {
  EXPECT_TRUE(Tell(*camera_, {0xC0, 0, 0x0C, 0x2A}).Good());
  EXPECT_THAT(scratch_.Get(".kelva/state"), testing::HasSubstr("manual.last-control=42\n"));
  const base::Bytes state = Ask(*camera_, {0xC6, 0, 0x07}, 40).data;
  EXPECT_EQ(base::Bytes(state.begin(), state.begin() + 8), (base::Bytes{42, 0, 0, 0, 1, 0, 0, 0}));
}

TEST_F(WifiActionsTest, TakesNoTextWithoutADataPhase) {
  wire::Command command = test::Block({0xC0, 0, 0x0C, 1});
  const base::Bytes text{'1', '.', '5', 0};
  command.length = 4;
  command.data = text;
  EXPECT_TRUE(camera_->Execute(command).Good()) << "direction 0: the length means nothing";
  EXPECT_THAT(scratch_.Get(".kelva/state"), testing::Not(testing::HasSubstr("1.5")));
  EXPECT_EQ(Send(*camera_, {0xC0, 0, 0x0C, 1}, text).sense, sense::kWrongDataLength);
  EXPECT_EQ(Send(*camera_, {0xC0, 0, 0x0B}, text).sense, sense::kWrongDataLength);
}

TEST_F(WifiActionsTest, SwitchesWifiOffOverARestart) {
  EXPECT_TRUE(Tell(*camera_, {0xC0, 0, 0x0D}).Good());
  Restart();
  EXPECT_THAT(scratch_.Get(".kelva/state"), testing::HasSubstr("wifi.on=0\n"));
}

TEST_F(WifiActionsTest, RefusesAChangeThatItCannotKeep) {
  scratch_.Put(".kelva/state/in-the-way", "");
  Restart();
  EXPECT_FALSE(SendText(*camera_, {0xC0, 0, 0x07}, "kelva.camera.x").Good());
  std::filesystem::remove_all(scratch_.Path() / ".kelva/state");
  EXPECT_TRUE(SendText(*camera_, {0xC0, 0, 0x08}, "kelva.camera.y").Good());
  EXPECT_THAT(scratch_.Get(".kelva/state"), testing::Not(testing::HasSubstr("kelva.camera.x")));
}

}  // namespace
}  // namespace vcam

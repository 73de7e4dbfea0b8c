#include "vcam/device/Settings.h"

#include <gmock/gmock.h>

#include "vcam/camera/testing/TestSupport.h"

namespace vcam {
namespace {

TEST(Settings, StandInTheStateFileAsLines) {
  Settings settings;
  settings.networks[0].ssid = "kelva.camera.50% off\n";
  settings.networks[1].passphraseSha256 = "ab12";
  settings.wifiOn = false;
  settings.authTypeCommands = 2;
  settings.manualControlCommands = 3;
  settings.lastManualControl = 255;
  settings.clockOffsetMs = -5;
  EXPECT_EQ(settings.Text(),
            "wifi.0.ssid=kelva.camera.50%25%20off%0A\n"
            "wifi.0.passphrase.sha256=\n"
            "wifi.1.ssid=\n"
            "wifi.1.passphrase.sha256=ab12\n"
            "wifi.on=0\n"
            "wifi.auth-type-commands=2\n"
            "manual.commands=3\n"
            "manual.last-control=255\n"
            "clock.offset-ms=-5\n");
}

TEST(Settings, ComeBackFromTheStateFile) {
  const Settings settings = Settings::Parse(
      "wifi.1.ssid=a%20b\nwifi.on=0\nmanual.last-control=7\nwifi.auth-type-commands=4\nclock.offset-ms=-86400000\n");
  EXPECT_EQ(settings.networks[1].ssid, "a b");
  EXPECT_FALSE(settings.wifiOn);
  EXPECT_EQ(settings.lastManualControl, 7);
  EXPECT_EQ(settings.authTypeCommands, 4U);
  EXPECT_EQ(settings.clockOffsetMs, -86400000);
}

TEST(Settings, EscapeWhatIsNoPlainCharacterAndNothingElse) {
  Settings settings;
  settings.networks[0].ssid = "\x1F !%~\x7F";
  EXPECT_THAT(settings.Text(), testing::StartsWith("wifi.0.ssid=%1F%20!%25~%7F\n"));
  EXPECT_EQ(Settings::Parse(settings.Text()).networks[0].ssid, "\x1F !%~\x7F");
  EXPECT_EQ(Settings::Parse("wifi.0.ssid=%4").networks[0].ssid, "%4");
  EXPECT_EQ(Settings::Parse("wifi.0.ssid=%4x%41").networks[0].ssid, "%4xA");
  EXPECT_TRUE(Settings::Parse("wifi.on=yes").wifiOn);
}

TEST(Settings, KeepDefaultsWhereTheFileMakesNoSense) {
  const Settings settings = Settings::Parse("garbage\n=\nwifi.0.ssid=%\nmanual.last-control=x\n\n%%%=1");
  EXPECT_EQ(settings.networks[0].ssid, "%");
  EXPECT_EQ(settings.lastManualControl, -1);
  EXPECT_TRUE(settings.wifiOn);
}

TEST(Settings, AreSavedForTheOwnerOnly) {
  const test::ScratchStorage scratch;
  const Storage storage(scratch.Path());
  Settings settings;
  settings.networks[0].ssid = "x";
  ASSERT_EQ(SaveSettings(storage, settings), 0);
  EXPECT_EQ(LoadSettings(storage).networks[0].ssid, "x");
  const auto permissions = std::filesystem::status(scratch.Path() / ".kelva/state").permissions();
  EXPECT_EQ(permissions & std::filesystem::perms::mask, std::filesystem::perms(0600));
}

TEST(Settings, AreTheDefaultsWithoutAStateFile) {
  const test::ScratchStorage scratch;
  EXPECT_TRUE(LoadSettings(Storage(scratch.Path())).wifiOn);
}

}  // namespace
}  // namespace vcam

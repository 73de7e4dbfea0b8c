#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using WifiVerbsTest = VerbTest;

TEST_F(WifiVerbsTest, WifiSettingsSayWhatTheyDo) {
  EXPECT_EQ(Run({"wifi", "name", "den"}).err, "kelva: The network is now called kelva.camera.den.\n");
  EXPECT_EQ(Run({"wifi", "off"}).code, ExitCode::kDone);
  const Ran ran = Run({"wifi", "auth", "WEP"});
  EXPECT_EQ(ran.code, ExitCode::kDone);
  EXPECT_NE(ran.err.find("carries no text"), std::string::npos);
}

TEST_F(WifiVerbsTest, ANameThatIsTooLongIsAUsageError) {
  EXPECT_EQ(Run({"wifi", "name", "12345678901234567890"}).code, ExitCode::kUsage);
  EXPECT_NE(Run({"wifi", "auth", "wpa2", "--json"}).out.find("\"auth\":\"WPA2\""), std::string::npos);
  EXPECT_EQ(Run({"wifi", "auth", "WPA3"}).code, ExitCode::kUsage);
}

}  // namespace
}  // namespace apps

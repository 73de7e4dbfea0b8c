#include "apps/desktop/Settings.h"

#include <QSettings>

#include "apps/desktop/testing/TestApplication.h"

namespace desktop {
namespace {

class SettingsTest : public WindowTest {
 protected:
  SettingsTest() { QSettings().clear(); }
  ~SettingsTest() override { QSettings().clear(); }
};

TEST_F(SettingsTest, BeginsAmongTheUsersPictures) {
  const Target target = RememberedTarget();
  EXPECT_TRUE(target.folder.endsWith("/Kelva"));
  EXPECT_EQ(target.pattern, "{folder}/{name}");
  EXPECT_FALSE(target.everything);
}

TEST_F(SettingsTest, RemembersWhatWasChosen) {
  const Target chosen{"/elsewhere", "{year}/{name}", "raw", true};
  Remember(chosen);
  EXPECT_EQ(RememberedTarget(), chosen);
}

TEST_F(SettingsTest, AreTheWordsOfACommandAndOfAnImport) {
  const Target target{"/a b", "{year}/{name}", "raw", true};
  EXPECT_EQ(target.Command(), QStringList({"target", "/a b", "{year}/{name}", "raw", "1"}));
  EXPECT_EQ(target.Options(), QStringList({"--pattern", "{year}/{name}", "--types", "raw", "--everything", "/a b"}));
}

TEST_F(SettingsTest, KindsAreWordsAndBits) {
  EXPECT_EQ(KindsText(11), "JPG RAW 128");
  EXPECT_EQ(KindsIn("raw,TXT,mp4"), Kinds{6});
  EXPECT_EQ(KindsIn(""), Kinds{0});
  EXPECT_EQ((Target{"", "", "", false}.Meant()), kAllKinds);
  EXPECT_EQ((Target{"", "", "raw", false}.Meant()), Kinds{2});
}

}  // namespace
}  // namespace desktop

#include "apps/desktop/Banner.h"

#include <QClipboard>
#include <QPushButton>

#include "apps/desktop/testing/TestApplication.h"

namespace desktop {
namespace {

class BannerTest : public WindowTest {
 protected:
  QPushButton* Button(const QString& text) {
    for (QPushButton* button : banner_.findChildren<QPushButton*>()) {
      if (button->text().remove('&').startsWith(text)) return button;
    }
    return nullptr;
  }

  Banner banner_;
};

TEST_F(BannerTest, IsThereWhenThereIsSomethingToSay) {
  EXPECT_TRUE(banner_.isHidden());
  banner_.Show({"You may not open the camera.", {}, false});
  EXPECT_FALSE(banner_.isHidden());
  EXPECT_TRUE(Button("Copy")->isHidden());
  EXPECT_TRUE(Button("Try")->isHidden());
  banner_.Show({});
  EXPECT_TRUE(banner_.isHidden());
}

TEST_F(BannerTest, CopiesTheCommand) {
  banner_.Show({"You may not open the camera.", "sudo adduser me plugdev", false});
  Button("Copy")->click();
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "sudo adduser me plugdev");
}

TEST_F(BannerTest, TriesAgain) {
  int tries = 0;
  banner_.onRetry = [&] { ++tries; };
  banner_.Show({"It has stopped.", {}, true});
  Button("Try")->click();
  EXPECT_EQ(tries, 1);
}

}  // namespace
}  // namespace desktop

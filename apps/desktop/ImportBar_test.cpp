#include "apps/desktop/ImportBar.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include "apps/desktop/testing/TestApplication.h"

namespace desktop {
namespace {

class ImportBarTest : public WindowTest {
 protected:
  ImportBarTest() {
    state_.phase = Phase::kReady;
    state_.listed = state_.targetKnown = true;
    state_.offer = {37, 40, 412000000, 0, 0, {}};
  }

  QPushButton* Button(const QString& text) {
    for (QPushButton* button : bar_.findChildren<QPushButton*>()) {
      if (button->text().remove('&').startsWith(text)) return button;
    }
    return nullptr;
  }

  QString Message() { return bar_.findChild<QLabel*>("message")->text(); }

  CameraState state_;
  ImportBar bar_{Target{"/pictures", "{folder}/{name}", {}, false}};
};

TEST_F(ImportBarTest, TheButtonSaysWhatItDoes) {
  EXPECT_EQ(ImportText(state_, {}), "&Import 37 new pictures (412 MB)");
  EXPECT_EQ(ImportText(state_, {1, 8100000}), "&Import 1 selected picture (8.1 MB)");
  state_.offer.pictures = 1;
  state_.offer.bytes = -1;
  EXPECT_EQ(ImportText(state_, {}), "&Import 1 new picture");
  state_.offer = {};
  EXPECT_EQ(ImportText(state_, {}), "No new pictures");
}

TEST_F(ImportBarTest, ProgressSaysHowFarHowFastAndHowLong) {
  EXPECT_EQ(ProgressText({"reading", 12, 37, 96000000, 412000000, 31000000, {}}),
            "12 of 37 files, 96.0 MB of 412 MB, 31.0 MB/s, 10 seconds left");
  EXPECT_EQ(ProgressText({}), "Beginning\u2026");
}

TEST_F(ImportBarTest, NothingNewIsNothingToPress) {
  bar_.Show(state_, {});
  ASSERT_NE(Button("Import 37"), nullptr);
  EXPECT_TRUE(Button("Import 37")->isEnabled());
  state_.offer = {};
  bar_.Show(state_, {});
  EXPECT_FALSE(Button("No new")->isEnabled());
}

TEST_F(ImportBarTest, AFolderThatCannotBeUsedIsSaidAndStopsTheButton) {
  state_.offer.error = "It is a file.";
  bar_.Show(state_, {});
  EXPECT_EQ(Message(), "It is a file.");
  EXPECT_FALSE(Button("Import")->isEnabled());
}

TEST_F(ImportBarTest, AnImportCanBeCancelled) {
  int cancelled = 0;
  bar_.onCancel = [&] { ++cancelled; };
  state_.phase = Phase::kImporting;
  state_.progress = {"reading", 1, 4, 50, 200, 10, {}};
  bar_.Show(state_, {});
  EXPECT_EQ(bar_.findChild<QProgressBar*>()->value(), 250);
  EXPECT_TRUE(Button("Import")->isHidden());
  Button("Cancel")->click();
  EXPECT_EQ(cancelled, 1);
}

TEST_F(ImportBarTest, AsksBeforeItDeletes) {
  QString said;
  bar_.onDelete = [&] { said = "delete"; };
  bar_.onKeep = [&] { said = "keep"; };
  state_.phase = Phase::kAsking;
  state_.imported = 37;
  state_.checked = true;
  bar_.Show(state_, {});
  EXPECT_EQ(Message(), "37 pictures are on this computer and checked. Delete them from the camera?");
  Button("Keep")->click();
  EXPECT_EQ(said, "keep");
  Button("Delete")->click();
  EXPECT_EQ(said, "delete");
}

TEST_F(ImportBarTest, OtherFilesAreNamedAndCanBeTicked) {
  Target seen;
  bar_.onTarget = [&](const Target& target) { seen = target; };
  auto* tick = bar_.findChild<QCheckBox*>();
  bar_.Show(state_, {});
  EXPECT_TRUE(tick->isHidden());
  state_.others = 3;
  bar_.Show(state_, {});
  EXPECT_EQ(tick->text(), "3 other files are not shown. Import them too");
  tick->toggle();  // as a screen reader does
  EXPECT_TRUE(seen.everything);
}

TEST_F(ImportBarTest, AnotherNamingIsToldOn) {
  Target seen;
  bar_.onTarget = [&](const Target& target) { seen = target; };
  auto* naming = bar_.findChild<QComboBox*>();
  naming->setCurrentIndex(2);
  EXPECT_EQ(seen.pattern, "{year}/{month}/{name}");
  EXPECT_EQ(seen.folder, "/pictures");
}

TEST_F(ImportBarTest, APatternOfItsUsersOwnStays) {
  ImportBar own(Target{"/pictures", "{serial}/{name}", "txt", false});
  EXPECT_EQ(own.findChild<QComboBox*>()->currentText(), "{serial}/{name}");
}

}  // namespace
}  // namespace desktop

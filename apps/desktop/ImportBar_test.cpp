#include "apps/desktop/ImportBar.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>

#include "apps/desktop/testing/ScriptedWorker.h"
#include "apps/desktop/testing/TestApplication.h"

namespace desktop {
namespace {

class ImportBarTest : public WindowTest {
 protected:
  ImportBarTest() {
    state_.listed = true;
    state_.offer = {{"new_pictures", 37}, {"new_bytes", 412000000}};
  }
  ~ImportBarTest() override { QSettings().clear(); }

  QPushButton* Button(const QString& text) {
    for (QPushButton* button : bar_.findChildren<QPushButton*>()) {
      if (button->text().remove('&').startsWith(text)) return button;
    }
    return nullptr;
  }

  QString Message() { return bar_.findChild<QLabel*>("message")->text(); }

  const Target& Chosen() const { return link_.State().target; }

  CameraState state_;
  ScriptedWorkers workers_;
  CameraLink link_{workers_.Starter(), "K1"};
  ImportBar bar_{link_};
};

TEST_F(ImportBarTest, TheButtonSaysWhatItDoes) {
  EXPECT_EQ(ImportText(state_, {}), "&Import 37 new pictures (412 MB)");
  EXPECT_EQ(ImportText(state_, {true, {0}, 8100000}), "&Import 1 selected picture (8.1 MB)");
  state_.offer = {{"new_pictures", 1}};
  EXPECT_EQ(ImportText(state_, {}), "&Import 1 new picture");
  state_.offer = {{"new_pictures", 0}, {"new_others", 2}, {"new_bytes", 0}, {"new_others_bytes", 5000}};
  EXPECT_EQ(ImportText(state_, {}), "&Import 2 other files (5 kB)");
  state_.offer = {{"new_pictures", 0}};
  EXPECT_EQ(ImportText(state_, {}), "No new pictures");
  state_.offer = {};
  EXPECT_EQ(ImportText(state_, {}), "&Import");
}

TEST_F(ImportBarTest, ProgressSaysHowFarHowFastAndHowLong) {
  state_.progress = {
      {"files", 12}, {"files_total", 37}, {"done", 96000000}, {"total", 412000000}, {"bytes_per_second", 31000000}};
  EXPECT_EQ(ProgressText(state_), "12 of 37 files, 96.0 MB of 412 MB, 31.0 MB/s, 10 seconds left");
  state_.progress = {};
  EXPECT_EQ(ProgressText(state_), "Beginning\u2026");
}

TEST_F(ImportBarTest, OfSelectedPicturesOnlyTheKindsThatAreMeantCount) {
  state_.target.types = "jpg";
  EXPECT_EQ(ImportText(state_, {true, {0}, 8100000}), "&Import 1 selected picture");
  bar_.Show(state_, {true, {}, 0});
  ASSERT_NE(Button("No such files selected"), nullptr);
  EXPECT_FALSE(Button("No such files selected")->isEnabled());
}

TEST_F(ImportBarTest, NothingNewIsNothingToPress) {
  bar_.Show(state_, {});
  ASSERT_NE(Button("Import 37"), nullptr);
  EXPECT_TRUE(Button("Import 37")->isEnabled());
  state_.offer = {{"new_pictures", 0}};
  bar_.Show(state_, {});
  EXPECT_FALSE(Button("No new")->isEnabled());
}

TEST_F(ImportBarTest, AFolderThatCannotBeUsedIsSaidAndStopsTheButton) {
  state_.offer["error"] = "It is a file.";
  bar_.Show(state_, {});
  EXPECT_EQ(Message(), "It is a file.");
  EXPECT_FALSE(Button("Import")->isEnabled());
}

TEST_F(ImportBarTest, AnImportCanBeCancelled) {
  workers_.scripts["import"] = "cat >/dev/null\n" + Say(R"({"command":"import","exit":130,"stored":0})");
  link_.Import({});
  state_.phase = Phase::kImporting;
  state_.progress = {{"done", 50}, {"total", 200}};
  bar_.Show(state_, {});
  EXPECT_EQ(bar_.findChild<QProgressBar*>()->value(), 250);
  EXPECT_TRUE(Button("Import")->isHidden());
  Button("Cancel")->click();
  EXPECT_TRUE(Await([&] { return link_.State().result.startsWith("Stopped."); }));
}

TEST_F(ImportBarTest, AsksBeforeItDeletes) {
  state_.phase = Phase::kAsking;
  state_.result = "Delete them from the camera?";
  bar_.Show(state_, {});
  EXPECT_EQ(Message(), "Delete them from the camera?");
  Button("Keep")->click();
  EXPECT_EQ(link_.State().result, "You can unplug the camera.");
  Button("Delete")->click();
  EXPECT_TRUE(workers_.calls.last().contains("--delete-after-verify"));
}

TEST_F(ImportBarTest, OtherFilesAreNamedAndCanBeTicked) {
  auto* tick = bar_.findChild<QCheckBox*>();
  bar_.Show(state_, {});
  EXPECT_TRUE(tick->isHidden());
  state_.others = 3;
  bar_.Show(state_, {});
  EXPECT_EQ(tick->text(), "3 other files are not shown. Import them too");
  tick->toggle();  // as a screen reader does
  EXPECT_TRUE(Chosen().everything);
}

TEST_F(ImportBarTest, AnotherNamingIsToldOnAndRemembered) {
  const QString folder = Chosen().folder;
  auto* naming = bar_.findChild<QComboBox*>();
  naming->setCurrentIndex(2);
  EXPECT_EQ(Chosen().pattern, "{year}/{month}/{name}");
  EXPECT_EQ(Chosen().folder, folder);
  EXPECT_EQ(RememberedTarget(), Chosen());
}

TEST_F(ImportBarTest, APatternOfItsUsersOwnStays) {
  link_.SetTarget({"/pictures", "{serial}/{name}", "txt", false});
  const ImportBar own(link_);
  EXPECT_EQ(own.findChild<QComboBox*>()->currentText(), "{serial}/{name}");
}

}  // namespace
}  // namespace desktop

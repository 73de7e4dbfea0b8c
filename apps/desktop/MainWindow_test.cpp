#include "apps/desktop/MainWindow.h"

#include <QLabel>
#include <QPushButton>
#include <QTabWidget>

#include "apps/desktop/Grid.h"
#include "apps/desktop/testing/ScriptedWorker.h"
#include "apps/desktop/testing/TestApplication.h"

namespace desktop {
namespace {

class MainWindowTest : public WindowTest {
 protected:
  void Open(const QString& watch) {
    workers_.scripts["watch"] = watch;
    workers_.scripts["camera"] = ThreePictures();
    window_ = std::make_unique<MainWindow>(workers_.Starter());
    window_->Watch();
    window_->show();
  }

  QTabWidget* Tabs() const { return window_->findChild<QTabWidget*>(); }

  bool Says(const QString& text) const {
    for (const QLabel* label : window_->findChildren<QLabel*>()) {
      if (label->isVisible() && label->text().contains(text)) return true;
    }
    return false;
  }

  ScriptedWorkers workers_;
  std::unique_ptr<MainWindow> window_;
};

const QString kWait = "cat >/dev/null";

TEST_F(MainWindowTest, WithoutACameraItSaysSo) {
  Open(Say(R"({"event":"ready"})") + kWait);
  EXPECT_TRUE(Says("Plug a camera in"));
}

TEST_F(MainWindowTest, EachCameraHasATab) {
  Open(Say(R"({"event":"attached","serial":"K1","present":true})") +
       Say(R"({"event":"attached","serial":"K2","present":true})") + Say(R"({"event":"ready"})") + kWait);
  ASSERT_TRUE(Await([&] { return Tabs()->count() == 2; }));
  EXPECT_EQ(Tabs()->currentIndex(), 0);
  EXPECT_TRUE(Await([&] { return Tabs()->tabText(0) == "Mine K1, battery 75"; }));
}

TEST_F(MainWindowTest, ACameraThatIsPluggedInLaterIsShown) {
  Open(Say(R"({"event":"attached","serial":"K1","present":true})") + Say(R"({"event":"ready"})") +
       Say(R"({"event":"attached","serial":"K2","present":false})") + kWait);
  ASSERT_TRUE(Await([&] { return Tabs()->count() == 2; }));
  EXPECT_EQ(Tabs()->currentIndex(), 1);
}

TEST_F(MainWindowTest, ThePicturesOfACameraThatComesHaveTheKeyboard) {
  for (const char* present : {"true", "false"}) {
    Open(Say(R"({"event":"attached","serial":"K1","present":true})") + "sleep 0.2\n" +
         Say(R"({"event":"attached","serial":"K2","present":)" + QString(present) + "}") + kWait);
    const int shown = QString(present) == "true" ? 0 : 1;
    ASSERT_TRUE(Await([&] { return Tabs()->count() == 2; }));
    EXPECT_TRUE(Await([&] {
      const QWidget* page = Tabs()->widget(shown);
      return dynamic_cast<Grid*>(window_->focusWidget()) != nullptr && page->isAncestorOf(window_->focusWidget());
    })) << present;
  }
}

TEST_F(MainWindowTest, ACameraThatIsUnpluggedGoes) {
  Open(Say(R"({"event":"attached","serial":"K1","present":true})") + "sleep 0.2\n" +
       Say(R"({"event":"lost","serial":"K1"})") + kWait);
  ASSERT_TRUE(Await([&] { return Tabs()->count() == 1; }));
  ASSERT_TRUE(Await([&] { return Tabs()->count() == 0; }));
  EXPECT_TRUE(Says("Plug a camera in"));
}

TEST_F(MainWindowTest, TroubleIsASentenceWithItsCommand) {
  Open(
      Say(R"({"event":"trouble","findings":[{"sentence":"You may not open it.","command":"sudo mend","advice":""}]})") +
      kWait);
  EXPECT_TRUE(Await([&] { return Says("You may not open it.") && Says("sudo mend"); }));
}

TEST_F(MainWindowTest, EveryTroubleIsSaid) {
  Open(Say(R"({"event":"trouble","findings":[{"sentence":"One.","command":"","advice":"Do it."},)"
           R"({"sentence":"Two.","command":"sudo mend","advice":""}]})") +
       kWait);
  EXPECT_TRUE(Await([&] { return Says("One. Do it.\nTwo.") && Says("sudo mend"); }));
}

TEST_F(MainWindowTest, AWatcherThatDiesCanBeStartedAgain) {
  Open("exit 1");
  ASSERT_TRUE(Await([&] { return Says("has stopped"); }));
  workers_.scripts["watch"] = Say(R"({"event":"attached","serial":"K1","present":true})") + kWait;
  for (QPushButton* button : window_->findChildren<QPushButton*>()) {
    if (button->text().contains("again") && button->isVisible()) button->click();
  }
  EXPECT_TRUE(Await([&] { return Tabs()->count() == 1; }));
}

TEST_F(MainWindowTest, ClosesWhileItsWorkersHang) {
  workers_.scripts["camera"] = "trap '' TERM; sleep 1000; sleep 1000";
  Open(Say(R"({"event":"attached","serial":"K1","present":true})") + "sleep 1000; sleep 1000");
  ASSERT_TRUE(Await([&] { return Tabs()->count() == 1; }));
  QElapsedTimer spent;
  spent.start();
  window_.reset();
  WorkerProcess::EndAll();
  EXPECT_LT(spent.elapsed(), 1000);
}

}  // namespace
}  // namespace desktop

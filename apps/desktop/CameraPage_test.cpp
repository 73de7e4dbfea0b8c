#include "apps/desktop/CameraPage.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <algorithm>

#include "apps/desktop/Grid.h"
#include "apps/desktop/Preview.h"
#include "apps/desktop/testing/ScriptedWorker.h"
#include "apps/desktop/testing/TestApplication.h"

namespace desktop {
namespace {

class CameraPageTest : public WindowTest {
 protected:
  CameraPageTest() {
    workers_.scripts["camera"] = ThreePictures();
    page_ = std::make_unique<CameraPage>(workers_.Starter(), "K1");
    page_->resize(800, 600);
    page_->Link().Attach();
    page_->show();
  }

  template <typename Kind>
  Kind* Child() const {
    for (QWidget* widget : page_->findChildren<QWidget*>()) {
      if (auto* child = dynamic_cast<Kind*>(widget)) return child;
    }
    return nullptr;
  }

  Grid* Pictures() const { return Child<Grid>(); }
  Preview* Larger() const { return Child<Preview>(); }

  bool HasButton(const QString& text) const {
    for (const QPushButton* button : page_->findChildren<QPushButton*>()) {
      if (button->isVisible() && button->text().remove('&') == text) return true;
    }
    return false;
  }

  ScriptedWorkers workers_;
  std::unique_ptr<CameraPage> page_;
};

TEST_F(CameraPageTest, ShowsPicturesAndOffersTheirImport) {
  ASSERT_TRUE(Await([&] { return HasButton("Import 1 new picture (3 kB)"); }));
  EXPECT_TRUE(Pictures()->isVisible());
  EXPECT_EQ(page_->windowTitle(), "Mine K1, battery 75");
}

TEST_F(CameraPageTest, NothingIsReadAfterThatFailed) {
  const auto isReading = [](const CameraPage& page) {
    const auto labels = page.findChildren<QLabel*>();
    return std::any_of(labels.begin(), labels.end(),
                       [](const QLabel* label) { return label->isVisible() && label->text().startsWith("Reading"); });
  };
  workers_.scripts["camera"] = R"(sleep 0.2; echo '{"event":"error","message":"It failed."}'; exit 1)";
  CameraPage page(workers_.Starter(), "K2");
  page.Link().Attach();
  page.show();
  EXPECT_TRUE(isReading(page));
  ASSERT_TRUE(Await([&] { return page.Link().State().notice.canRetry; }));
  EXPECT_FALSE(isReading(page));
}

TEST_F(CameraPageTest, ASelectionChangesTheOffer) {
  ASSERT_TRUE(Await([&] { return HasButton("Import 1 new picture (3 kB)"); }));
  Pictures()->selectAll();
  EXPECT_TRUE(HasButton("Import 3 selected pictures (3 kB)"));
}

TEST_F(CameraPageTest, ASelectionWithoutAFileThatIsMeantOffersNothing) {
  ASSERT_TRUE(Await([&] { return HasButton("Import 1 new picture (3 kB)"); }));
  Target raw = page_->Link().State().target;
  raw.types = "raw";
  page_->Link().SetTarget(raw);
  Pictures()->selectAll();
  EXPECT_TRUE(HasButton("Import 1 selected picture"));
  Pictures()->selectionModel()->select(page_->Link().Model().IndexOf(0), QItemSelectionModel::Deselect);
  EXPECT_TRUE(HasButton("No such files selected"));
  raw.types.clear();
  page_->Link().SetTarget(raw);
}

TEST_F(CameraPageTest, SpaceShowsAPictureLargeAndEscapeGoesBack) {
  ASSERT_TRUE(Await([&] { return page_->Link().State().others == 2; }));
  QTest::keyClick(Pictures(), Qt::Key_Home);
  QTest::keyClick(Pictures(), Qt::Key_Space);
  EXPECT_TRUE(Larger()->isVisible());
  EXPECT_TRUE(Larger()->accessibleDescription().startsWith("IMG_3"));
  QTest::keyClick(Larger(), Qt::Key_Right);
  EXPECT_TRUE(Larger()->accessibleDescription().startsWith("IMG_2"));
  QTest::keyClick(Larger(), Qt::Key_Escape);
  EXPECT_TRUE(Pictures()->isVisible());
  EXPECT_EQ(Pictures()->currentIndex(), page_->Link().Model().IndexOf(1));
}

TEST_F(CameraPageTest, ACameraThatIsGoneIsDone) {
  bool done = false;
  page_->onDone = [&] { done = true; };
  page_->Link().Lose();
  page_->Link().Keep();
  EXPECT_TRUE(done);
}

}  // namespace
}  // namespace desktop

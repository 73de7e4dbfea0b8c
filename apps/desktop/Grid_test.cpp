#include "apps/desktop/Grid.h"

#include <QScrollBar>
#include <QTest>

#include "apps/desktop/testing/TestApplication.h"

namespace desktop {
namespace {

std::vector<Picture> Pictures(int count) {
  std::vector<Picture> pictures(static_cast<std::size_t>(count));
  for (int index = 0; index < count; ++index) {
    Picture& picture = pictures[static_cast<std::size_t>(index)];
    picture.folder = "100A";
    picture.name = "IMG_" + QString::number(count - index);
  }
  return pictures;
}

QDateTime Day(int day) {
  return QDateTime(QDate(2026, 3, day), QTime(12, 0));
}

class GridTest : public WindowTest {
 protected:
  GridTest() : grid_(model_) {
    grid_.resize(700, 500);
    grid_.onWanted = [this](const QList<int>& rows) { wanted_ = rows; };
    grid_.onOpen = [this](int row) { opened_ = row; };
    grid_.show();
  }

  // Until all that is timed has been done.
  void Fill(int count) {
    model_.Append(Pictures(count));
    ASSERT_TRUE(Await([&] { return !wanted_.isEmpty(); }));
  }

  int Current() const {
    int picture = 0;
    while (model_.IndexOf(picture) != grid_.currentIndex()) ++picture;
    return picture;
  }
  int At(QPoint place) const {
    int picture = -1;
    for (int one = 0; one < model_.Count(); ++one) {
      if (model_.IndexOf(one) == grid_.indexAt(place)) picture = one;
    }
    return picture;
  }
  void GoTo(int picture) { grid_.setCurrentIndex(model_.IndexOf(picture)); }

  QRect RectOf(int row) const { return grid_.visualRect(model_.IndexOf(row)); }

  CameraModel model_;
  Grid grid_;
  QList<int> wanted_;
  int opened_ = -1;
};

TEST_F(GridTest, AsksForWhatIsInViewFirst) {
  Fill(10000);
  EXPECT_EQ(wanted_.first(), 0);
  EXPECT_LT(wanted_.size(), 200);
}

TEST_F(GridTest, ScrollingAsksForTheEnd) {
  Fill(10000);
  grid_.verticalScrollBar()->setValue(grid_.verticalScrollBar()->maximum());
  ASSERT_TRUE(Await([&] { return wanted_.contains(9999); }));
  EXPECT_FALSE(wanted_.contains(0));
}

TEST_F(GridTest, WhatIsOnItsWayIsNotAskedForAgain) {
  Fill(10);
  wanted_.clear();
  for (int index = 0; index < 9; ++index) model_.SetThumbnail(index, {}, Day(1), "none");
  grid_.doItemsLayout();
  QTest::qWait(50);
  EXPECT_TRUE(wanted_.isEmpty()) << "the last one is still on its way";
}

TEST_F(GridTest, AHeadlinePushesItsDayDown) {
  Fill(10);
  const int before = RectOf(5).top();
  for (int index = 0; index < 10; ++index) model_.SetThumbnail(index, {}, Day(index < 5 ? 2 : 1), "none");
  ASSERT_TRUE(Await([&] { return RectOf(5).top() > before; }));
  EXPECT_EQ(RectOf(5).left(), RectOf(0).left());
}

TEST_F(GridTest, WhatIsInViewStaysWhenADayAboveIsDivided) {
  Fill(1000);
  grid_.scrollTo(model_.IndexOf(500));
  const int first = At(QPoint(RectOf(500).left() + 20, 100));
  const int before = RectOf(first).top();
  const int height = grid_.verticalScrollBar()->maximum();
  for (int index = 0; index < 300; ++index) model_.SetThumbnail(index, {}, Day(28 - index / 20), "none");
  ASSERT_TRUE(Await([&] { return grid_.verticalScrollBar()->maximum() > height; }));
  EXPECT_NEAR(RectOf(first).top(), before, RectOf(first).height());
}

TEST_F(GridTest, TheLastPictureStaysInViewWhenEveryLineGetsADayOfItsOwn) {
  Fill(1000);
  QTest::keyClick(&grid_, Qt::Key_End);
  ASSERT_TRUE(Await([&] { return wanted_.contains(999); }));
  for (int index = 900; index < 1000; ++index) model_.SetThumbnail(index, {}, Day(1 + (999 - index) / 4), "none");
  const int before = grid_.verticalScrollBar()->maximum();
  ASSERT_TRUE(Await([&] { return grid_.verticalScrollBar()->maximum() > before; }));
  EXPECT_TRUE(grid_.viewport()->rect().contains(RectOf(999)));
}

TEST_F(GridTest, TheChosenPictureStaysInViewWhenItsTimePutsItElsewhere) {
  Fill(1000);
  QTest::keyClick(&grid_, Qt::Key_End);
  for (int index = 0; index < 8; ++index) model_.SetThumbnail(index, {}, Day(1), "none");
  model_.SetThumbnail(999, {}, Day(2), "none");
  ASSERT_TRUE(Await([&] { return model_.IndexOf(999).row() == 1; }));
  EXPECT_EQ(Current(), 999);
  EXPECT_EQ(grid_.Chosen(), QList<int>({999}));
  EXPECT_TRUE(grid_.viewport()->rect().intersects(RectOf(999)));
}

TEST_F(GridTest, TheViewDoesNotFollowAPictureThatNobodyChose) {
  Fill(1000);
  QScrollBar& bar = *grid_.verticalScrollBar();
  bar.setValue(bar.maximum() / 2);
  const int first = At(QPoint(RectOf(0).left() + 20, RectOf(0).height() / 2));
  const int before = bar.value();
  model_.SetThumbnail(0, {}, Day(1), "none");
  model_.SetThumbnail(first, {}, Day(2), "none");
  ASSERT_TRUE(Await([&] { return model_.IndexOf(first).row() == 1; }));
  EXPECT_EQ(bar.value(), before);
}

TEST_F(GridTest, TheKeyboardGoesByWhatIsSeen) {
  Fill(10);
  for (int index = 0; index < 10; ++index) model_.SetThumbnail(index, {}, Day(1 + index), "none");
  ASSERT_TRUE(Await([&] { return model_.IndexOf(9).row() == 1; }));
  QTest::keyClick(&grid_, Qt::Key_Home);
  EXPECT_EQ(Current(), 9);
  QTest::keyClick(&grid_, Qt::Key_Right);
  EXPECT_EQ(Current(), 8) << "over a headline";
  QTest::keyClick(&grid_, Qt::Key_Left);
  EXPECT_EQ(Current(), 9);
  QTest::keyClick(&grid_, Qt::Key_End);
  EXPECT_EQ(Current(), 0);
  QTest::keyClick(&grid_, Qt::Key_Home);
  EXPECT_EQ(grid_.verticalScrollBar()->value(), 0);
}

TEST_F(GridTest, PicturesThatWentAreNotDrawn) {
  Fill(100);
  model_.Clear();
  grid_.viewport()->grab();
  EXPECT_EQ(grid_.verticalScrollBar()->maximum(), 0);
}

TEST_F(GridTest, TheKeyboardReachesEverything) {
  Fill(100);
  QTest::keyClick(&grid_, Qt::Key_Home);
  EXPECT_EQ(Current(), 0);
  QTest::keyClick(&grid_, Qt::Key_Right);
  EXPECT_EQ(Current(), 1);
  QTest::keyClick(&grid_, Qt::Key_Down);
  EXPECT_GT(Current(), 2);
  EXPECT_EQ(RectOf(Current()).left(), RectOf(1).left());
  QTest::keyClick(&grid_, Qt::Key_End);
  EXPECT_EQ(Current(), 99);
  EXPECT_TRUE(grid_.viewport()->rect().contains(RectOf(99))) << "it is scrolled into view";
  QTest::keyClick(&grid_, Qt::Key_Space);
  EXPECT_EQ(opened_, 99);
}

TEST_F(GridTest, LinesAreFilledFromTheLeft) {
  Fill(10);
  const int columns = 700 / RectOf(0).width();
  EXPECT_EQ(RectOf(columns - 1).top(), RectOf(0).top());
  EXPECT_EQ(RectOf(columns).left(), RectOf(0).left());
  EXPECT_EQ(RectOf(columns).top(), RectOf(0).top() + RectOf(0).height());
  EXPECT_EQ(At(RectOf(3).center()), 3);
  EXPECT_EQ(At(QPoint(RectOf(9).right() + 5, RectOf(9).center().y())), -1) << "an empty place of a line";
  EXPECT_EQ(At({20, 5}), -1) << "a headline";
}

TEST_F(GridTest, AWindowThatIsTooNarrowHasOneColumn) {
  grid_.resize(30, 500);
  Fill(2);
  EXPECT_EQ(RectOf(0).left(), RectOf(1).left());
}

TEST_F(GridTest, ALineDownKeepsTheColumnAsFarAsTheLineGoes) {
  Fill(20);
  const int columns = 700 / RectOf(0).width();
  for (int row = 0; row < 20; ++row) model_.SetThumbnail(row, {}, Day(row <= columns ? 2 : 1), "none");
  ASSERT_TRUE(Await([&] { return RectOf(columns + 1).left() == RectOf(0).left(); }));
  GoTo(columns - 1);
  QTest::keyClick(&grid_, Qt::Key_Down);
  EXPECT_EQ(Current(), columns) << "the only one of its line";
  QTest::keyClick(&grid_, Qt::Key_Down);
  EXPECT_EQ(Current(), columns + 1) << "into the next day";
  QTest::keyClick(&grid_, Qt::Key_Right);
  QTest::keyClick(&grid_, Qt::Key_Up);
  EXPECT_EQ(Current(), columns);
  QTest::keyClick(&grid_, Qt::Key_Left);
  EXPECT_EQ(Current(), columns - 1) << "the line above";
  QTest::keyClick(&grid_, Qt::Key_Up);
  EXPECT_EQ(Current(), columns - 1) << "nothing is above";
  QTest::keyClick(&grid_, Qt::Key_PageDown);
  EXPECT_GT(Current(), columns);
}

TEST_F(GridTest, AFrameOfTheMouseChoosesWhatItTouches) {
  Fill(20);
  const QRect last = RectOf(19);
  QTest::mousePress(grid_.viewport(), Qt::LeftButton, {}, {last.right() + 20, last.center().y()});
  QTest::mouseMove(grid_.viewport(), last.center() + QPoint(20, 10));
  QTest::mouseMove(grid_.viewport(), last.center());
  QTest::mouseRelease(grid_.viewport(), Qt::LeftButton, {}, last.center());
  EXPECT_EQ(grid_.Chosen(), QList<int>({19}));
}

TEST_F(GridTest, TheFirstLineIsShownWithItsHeadline) {
  Fill(1000);
  QTest::keyClick(&grid_, Qt::Key_End);
  EXPECT_GT(grid_.verticalScrollBar()->value(), 0);
  QTest::keyClick(&grid_, Qt::Key_Home);
  EXPECT_EQ(grid_.verticalScrollBar()->value(), 0);
}

TEST_F(GridTest, ShiftChoosesAllBetween) {
  Fill(100);
  QTest::keyClick(&grid_, Qt::Key_Home);
  QTest::keyClick(&grid_, Qt::Key_Down, Qt::ShiftModifier);
  const auto below = static_cast<qsizetype>(Current());
  EXPECT_EQ(grid_.Chosen().size(), below + 1);
  QTest::keyClick(&grid_, Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(grid_.Chosen().size(), 100);
  QTest::keyClick(&grid_, Qt::Key_Escape);
  EXPECT_TRUE(grid_.Chosen().isEmpty());
}

TEST_F(GridTest, TheMouseChoosesOneAndAddsAnother) {
  Fill(20);
  QTest::mouseClick(grid_.viewport(), Qt::LeftButton, {}, RectOf(2).center());
  EXPECT_EQ(grid_.Chosen(), QList<int>({2}));
  QTest::mouseClick(grid_.viewport(), Qt::LeftButton, Qt::ControlModifier, RectOf(4).center());
  EXPECT_EQ(grid_.Chosen(), QList<int>({2, 4}));
  QTest::mouseClick(grid_.viewport(), Qt::LeftButton, Qt::ShiftModifier, RectOf(6).center());
  EXPECT_TRUE(grid_.Chosen().contains(6));
}

TEST_F(GridTest, DrawsPicturesWithThumbnailsAndHeadlines) {
  Fill(3);
  QImage red(40, 30, QImage::Format_RGB32);
  red.fill(Qt::red);
  model_.SetThumbnail(0, red, Day(1));
  const QImage seen = grid_.viewport()->grab().toImage();
  EXPECT_EQ(seen.pixelColor(RectOf(0).center() - QPoint(0, 10)), QColor(Qt::red));
}

}  // namespace
}  // namespace desktop

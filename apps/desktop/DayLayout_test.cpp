#include "apps/desktop/DayLayout.h"

#include <gtest/gtest.h>

namespace desktop {
namespace {

const QDate kMonday(2026, 3, 16);
const QDate kSunday(2026, 3, 15);

using Days = std::vector<std::optional<QDate>>;

// Columns of 100 in a width of 320: three, with a margin of 10 at both sides.
DayLayout Arranged(const Days& days) {
  DayLayout layout;
  layout.Arrange({320, 100, 25, 40, 10}, static_cast<int>(days.size()),
                 [&](int picture) { return days[static_cast<std::size_t>(picture)]; });
  return layout;
}

TEST(DayLayoutTest, LinesAreFilledFromTheLeft) {
  const DayLayout layout = Arranged(Days(4));
  EXPECT_EQ(layout.Columns(), 3);
  EXPECT_EQ(layout.RectOf(0), QRect(10, 40, 100, 100));
  EXPECT_EQ(layout.RectOf(2), QRect(210, 40, 100, 100));
  EXPECT_EQ(layout.RectOf(3), QRect(10, 140, 100, 100));
  EXPECT_EQ(layout.Height(), 250);
}

TEST(DayLayoutTest, EachRunOfADayHasAHeadline) {
  const DayLayout layout = Arranged({kMonday, kMonday, kSunday});
  ASSERT_EQ(layout.Sections().size(), 2U);
  EXPECT_EQ(layout.Sections()[1].day, kSunday);
  EXPECT_EQ(layout.HeadlineOf(layout.Sections()[1]), QRect(10, 140, 300, 40));
  EXPECT_EQ(layout.RectOf(2).top(), 180);
}

TEST(DayLayoutTest, APictureWhoseDayIsNotKnownStandsWithTheOneBefore) {
  EXPECT_EQ(Arranged({std::nullopt, kMonday, std::nullopt, kMonday}).Sections().size(), 1U);
  EXPECT_EQ(Arranged({std::nullopt, kMonday, std::nullopt, kSunday}).Sections()[1].first, 3);
}

TEST(DayLayoutTest, PicturesWithoutATimeAreARunOfTheirOwn) {
  const DayLayout layout = Arranged({kMonday, QDate()});
  ASSERT_EQ(layout.Sections().size(), 2U);
  EXPECT_FALSE(layout.Sections()[1].day->isValid());
}

TEST(DayLayoutTest, APlaceFindsItsPicture) {
  const DayLayout layout = Arranged({kMonday, kSunday});
  EXPECT_EQ(layout.At({50, 60}), 0);
  EXPECT_EQ(layout.At({150, 60}), -1) << "an empty place of a line";
  EXPECT_EQ(layout.At({50, 150}), -1) << "a headline";
  EXPECT_EQ(layout.At({50, 200}), 1);
  EXPECT_EQ(layout.At({50, 5000}), -1);
}

TEST(DayLayoutTest, AStripNamesThePicturesInIt) {
  const DayLayout layout = Arranged(Days(9));
  EXPECT_EQ(layout.FirstFrom(0), 0);
  EXPECT_EQ(layout.FirstFrom(150), 3);
  EXPECT_EQ(layout.EndBefore(150), 6);
  EXPECT_EQ(layout.EndBefore(5000), 9);
  EXPECT_EQ(layout.FirstFrom(5000), 9);
}

TEST(DayLayoutTest, ALineDownKeepsTheColumn) {
  const DayLayout layout = Arranged({kMonday, kMonday, kMonday, kMonday, kSunday, kSunday, kSunday});
  EXPECT_EQ(layout.LinesFrom(0, 1), 3);
  EXPECT_EQ(layout.LinesFrom(2, 1), 3) << "as far as the line goes";
  EXPECT_EQ(layout.LinesFrom(3, 1), 4) << "into the next day";
  EXPECT_EQ(layout.LinesFrom(6, -1), 3);
  EXPECT_EQ(layout.LinesFrom(3, -1), 0);
  EXPECT_EQ(layout.LinesFrom(1, -1), 1) << "nothing is above";
  EXPECT_EQ(layout.LinesFrom(5, 1), 5) << "nothing is below";
  EXPECT_EQ(layout.LinesFrom(0, 9), 4);
}

TEST(DayLayoutTest, WithoutPicturesThereIsNothing) {
  const DayLayout layout = Arranged({});
  EXPECT_EQ(layout.Height(), 0);
  EXPECT_EQ(layout.At({50, 60}), -1);
  EXPECT_EQ(layout.LinesFrom(0, 1), -1);
  EXPECT_EQ(layout.EndBefore(500), 0);
}

TEST(DayLayoutTest, AWindowThatIsTooNarrowHasOneColumn) {
  DayLayout layout;
  layout.Arrange({30, 100, 25, 40, 10}, 2, [](int) { return std::nullopt; });
  EXPECT_EQ(layout.Columns(), 1);
}

}  // namespace
}  // namespace desktop

#include "apps/desktop/DayList.h"

#include <gtest/gtest.h>

#include <QItemSelectionModel>

namespace desktop {
namespace {

const QDate kMonday(2026, 3, 16);
const QDate kSunday(2026, 3, 15);

using Days = std::vector<std::optional<QDate>>;

void SetDays(CameraModel& model, const Days& days) {
  int row = 0;
  for (const auto& day : days) {
    if (day) model.SetNoThumbnail(row, "none", QDateTime(*day, QTime(12, 0)));
    ++row;
  }
}

void Append(CameraModel& model, const Days& days) {
  std::vector<Picture> pictures(days.size());
  for (Picture& picture : pictures) picture.folder = "100A";
  model.Append(std::move(pictures));
  SetDays(model, days);
}

// The rows from the top: pictures by number, "-" for a headline.
QString Rows(const DayList& list) {
  QStringList rows;
  for (int row = 0; row < list.rowCount(); ++row) {
    rows << (list.PictureAt(row) < 0 ? QString("-") : QString::number(list.PictureAt(row)));
  }
  return rows.join(' ');
}

QString RowsOf(const Days& days) {
  CameraModel model;
  Append(model, days);
  return Rows(DayList(model));
}

TEST(DayListTest, EachRunOfADayHasAHeadline) {
  EXPECT_EQ(RowsOf({kMonday, kMonday, kSunday}), "- 0 1 - 2");
  EXPECT_EQ(RowsOf({kMonday, kSunday, kMonday}), "- 0 - 1 - 2");
}

TEST(DayListTest, APictureWhoseDayIsNotKnownStandsWithTheOneBefore) {
  EXPECT_EQ(RowsOf({std::nullopt, kMonday, std::nullopt, kMonday}), "- 0 1 2 3");
  EXPECT_EQ(RowsOf({std::nullopt, kMonday, std::nullopt, kSunday}), "- 0 1 2 - 3");
}

TEST(DayListTest, PicturesWithoutATimeAreARunOfTheirOwn) {
  CameraModel model;
  Append(model, {kMonday, QDate()});
  const DayList list(model);
  EXPECT_EQ(Rows(list), "- 0 - 1");
  EXPECT_EQ(list.index(2).data(), "100A, without a date");
}

TEST(DayListTest, AHeadlineIsAFolderUntilADayIsKnown) {
  CameraModel model;
  Append(model, {std::nullopt, std::nullopt});
  DayList list(model);
  EXPECT_EQ(list.index(0).data(), "100A");
  SetDays(model, {std::nullopt, kMonday});
  EXPECT_EQ(list.index(0).data(), QLocale().toString(kMonday, QLocale::LongFormat));
}

TEST(DayListTest, DaysThatArriveMoveNoSelection) {
  CameraModel model;
  Append(model, Days(5));
  DayList list(model);
  QItemSelectionModel selection(&list);
  selection.select(list.index(list.RowOf(3)), QItemSelectionModel::Select);
  SetDays(model, {kMonday, kMonday, kSunday, kMonday, kMonday});
  list.Divide();
  EXPECT_EQ(Rows(list), "- 0 1 - 2 - 3 4");
  ASSERT_EQ(selection.selectedIndexes().size(), 1);
  EXPECT_EQ(list.PictureAt(selection.selectedIndexes()[0].row()), 3);
  SetDays(model, {kMonday, kMonday, kMonday, kMonday, kMonday});
  list.Divide();
  EXPECT_EQ(Rows(list), "- 0 1 2 3 4");
  EXPECT_EQ(list.PictureAt(selection.selectedIndexes()[0].row()), 3);
}

TEST(DayListTest, MorePicturesFollow) {
  CameraModel model;
  DayList list(model);
  Append(model, {std::nullopt});
  Append(model, {std::nullopt, std::nullopt});
  EXPECT_EQ(Rows(list), "- 0 1 2");
  EXPECT_EQ(list.RowOf(2), 3);
}

TEST(DayListTest, APictureThatChangesIsARowThatChanges) {
  CameraModel model;
  Append(model, {kMonday, kSunday});
  DayList list(model);
  int row = -1;
  QObject::connect(&list, &DayList::dataChanged, [&](const QModelIndex& from) { row = from.row(); });
  model.SetThumbnail(1, QImage(1, 1, QImage::Format_RGB32), QDateTime(kSunday, QTime(12, 0)));
  EXPECT_EQ(row, 3);
}

TEST(DayListTest, HeadlinesCannotBeChosen) {
  CameraModel model;
  Append(model, {kMonday});
  const DayList list(model);
  EXPECT_EQ(list.flags(list.index(0)), Qt::NoItemFlags);
  EXPECT_TRUE(list.flags(list.index(1)).testFlag(Qt::ItemIsSelectable));
}

TEST(DayListTest, WithoutPicturesThereIsNothing) {
  CameraModel model;
  Append(model, {kMonday});
  DayList list(model);
  model.Clear();
  list.Divide();
  EXPECT_EQ(list.rowCount(), 0);
  EXPECT_EQ(list.PictureAt(0), -1);
}

}  // namespace
}  // namespace desktop

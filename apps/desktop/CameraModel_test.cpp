#include "apps/desktop/CameraModel.h"

#include <gtest/gtest.h>

#include <QItemSelectionModel>
#include <cmath>
#include <optional>

namespace desktop {
namespace {

Picture Numbered(int number) {
  Picture picture;
  picture.name = "IMG_" + QString::number(number);
  picture.key = "100A/" + picture.name;
  picture.kinds = 3;
  picture.bytes = 8100000;
  return picture;
}

QImage Square(int side) {
  QImage image(side, side, QImage::Format_RGB32);
  image.fill(Qt::red);
  return image;
}

const QDateTime kTaken(QDate(2026, 3, 14), QTime(15, 9));

const QDate kMonday(2026, 3, 16);
const QDate kSunday(2026, 3, 15);

using Days = std::vector<std::optional<QDate>>;

void SetDays(CameraModel& model, const Days& days) {
  int row = 0;
  for (const auto& day : days) {
    if (day) model.SetThumbnail(row, {}, QDateTime(*day, QTime(12, 0)), "none");
    ++row;
  }
}

void Append(CameraModel& model, const Days& days) {
  std::vector<Picture> pictures(days.size());
  for (Picture& picture : pictures) picture.folder = "100A";
  model.Append(std::move(pictures));
  SetDays(model, days);
  model.Divide();
}

// The rows from the top: pictures by number, "-" for a headline.
QString Rows(const CameraModel& list) {
  QStringList rows;
  for (int row = 0; row < list.rowCount(); ++row) {
    rows << (list.PictureAt(row) < 0 ? QString("-") : QString::number(list.PictureAt(row)));
  }
  return rows.join(' ');
}

QString RowsOf(const Days& days) {
  CameraModel model;
  Append(model, days);
  return Rows(model);
}

TEST(CameraModelTest, KeepsTheOrderInWhichPicturesCame) {
  CameraModel model;
  model.Append({Numbered(7), Numbered(6)});
  model.Append({Numbered(5)});
  EXPECT_EQ(model.Count(), 3);
  EXPECT_EQ(model.IndexOf(2).data(), "IMG_5");
}

TEST(CameraModelTest, SaysToAScreenReaderWhatIsSeen) {
  CameraModel model;
  model.Append({Numbered(7)});
  const auto text = [&] { return model.IndexOf(0).data(Qt::AccessibleTextRole).toString(); };
  EXPECT_EQ(text(), "IMG_7, JPG RAW, 8.1 MB") << "nobody knows yet whether it is new";
  model.SetMissing("0", kAllKinds);
  EXPECT_EQ(text(), "IMG_7, JPG RAW, 8.1 MB, on this computer");
  model.SetMissing("1", kAllKinds);
  EXPECT_TRUE(text().endsWith(", new"));
  model.SetThumbnail(0, {}, {}, "It is damaged.");
  EXPECT_TRUE(text().endsWith(", new, It is damaged."));
}

TEST(CameraModelTest, OnlyWhatIsMeantMakesAPictureNewAndOnlyAllOfItIsHere) {
  CameraModel model;
  model.Append({Numbered(7)});
  model.SetMissing("2", 1);
  EXPECT_FALSE(model.IsNew(0));
  EXPECT_TRUE(model.Description(0).endsWith(", RAW not on this computer"));
  model.SetMissing("3", 1);
  EXPECT_TRUE(model.IsNew(0));
}

TEST(CameraModelTest, APictureThatWasStoredIsNoLongerNew) {
  CameraModel model;
  model.Append({Numbered(7), Numbered(6)});
  model.SetMissing("31", kAllKinds);
  model.MarkStored("100A/IMG_7", 1);
  EXPECT_TRUE(model.IsNew(0)) << "its RAW is missing";
  model.MarkStored("100A/IMG_7", 2);
  model.MarkStored("100A/unknown", 1);
  EXPECT_FALSE(model.IsNew(0));
  EXPECT_TRUE(model.IsNew(1));
}

TEST(CameraModelTest, AThumbnailBringsItsTime) {
  CameraModel model;
  model.Append({Numbered(7)});
  EXPECT_TRUE(model.Lacks(0));
  model.SetThumbnail(0, Square(10), kTaken);
  EXPECT_FALSE(model.Lacks(0));
  EXPECT_EQ(model.Thumbnail(0).width(), 10);
  EXPECT_EQ(model.At(0).taken, kTaken);
}

TEST(CameraModelTest, APictureWithoutAThumbnailIsNotAskedForAgain) {
  CameraModel model;
  model.Append({Numbered(7)});
  model.SetThumbnail(0, {}, kTaken, "damaged");
  EXPECT_FALSE(model.Lacks(0));
  EXPECT_TRUE(model.Thumbnail(0).isNull());
}

TEST(CameraModelTest, ThumbnailsBeyondTheBoundAreDroppedAndLackedAgain) {
  CameraModel model;
  model.Append({Numbered(7), Numbered(6)});
  const auto side = static_cast<int>(std::sqrt(CameraModel::kCacheBytes / 4 * 3 / 4));
  model.SetThumbnail(0, Square(side), kTaken);
  model.SetThumbnail(1, Square(side), kTaken);
  EXPECT_TRUE(model.Lacks(0));
  EXPECT_FALSE(model.Lacks(1));
}

TEST(CameraModelTest, AThumbnailOfAnUnknownPictureIsNoneOfItsOwn) {
  CameraModel model;
  model.SetThumbnail(1, Square(1), kTaken);
  EXPECT_EQ(model.rowCount(), 0);
}

TEST(CameraModelTest, EachRunOfADayHasAHeadline) {
  EXPECT_EQ(RowsOf({kMonday, kMonday, kSunday}), "- 0 1 - 2");
  EXPECT_EQ(RowsOf({kMonday, kSunday, QDate(2026, 3, 14)}), "- 0 - 1 - 2");
}

TEST(CameraModelTest, TheNewestStandsFirstWhateverItsNumber) {
  EXPECT_EQ(RowsOf({kMonday, kSunday, kMonday}), "- 0 2 - 1");
}

TEST(CameraModelTest, PicturesWhoseTimesAreKnownShareOutTheirPlacesAndTheOthersStay) {
  EXPECT_EQ(RowsOf({std::nullopt, kSunday, std::nullopt, kMonday, std::nullopt}), "- 0 3 2 - 1 4");
  EXPECT_EQ(RowsOf({QDate(), kSunday, kMonday}), "- 0 - 2 - 1");
}

TEST(CameraModelTest, PicturesOfOneMomentStandByTheirNumbers) {
  CameraModel model;
  Append(model, Days(3));
  model.SetThumbnail(2, {}, kTaken, "none");
  model.SetThumbnail(0, {}, kTaken, "none");
  model.SetThumbnail(1, {}, kTaken.addSecs(1), "none");
  model.Divide();
  EXPECT_EQ(Rows(model), "- 1 0 2");
}

TEST(CameraModelTest, TheNeighboursOfAPictureAreThoseThatStandBesideIt) {
  CameraModel model;
  Append(model, {kSunday, kMonday, kSunday});
  ASSERT_EQ(Rows(model), "- 1 - 0 2");
  EXPECT_EQ(model.Beside(1, 1), 0);
  EXPECT_EQ(model.Beside(0, -1), 1);
  EXPECT_EQ(model.Beside(0, 1), 2);
  EXPECT_EQ(model.Beside(1, -1), 1) << "it is the first";
  EXPECT_EQ(model.Beside(2, 1), 2) << "it is the last";
}

TEST(CameraModelTest, APictureWhoseDayIsNotKnownStandsWithTheOneBefore) {
  EXPECT_EQ(RowsOf({std::nullopt, kMonday, std::nullopt, kMonday}), "- 0 1 2 3");
  EXPECT_EQ(RowsOf({std::nullopt, kMonday, std::nullopt, kSunday}), "- 0 1 2 - 3");
}

TEST(CameraModelTest, PicturesWithoutATimeStandWithTheOneBefore) {
  EXPECT_EQ(RowsOf({kSunday, QDate(), kMonday, QDate(), QDate(), kSunday}), "- 2 3 4 - 0 1 5");
}

TEST(CameraModelTest, WithoutOneBeforeInTheirFolderTheyAreARunOfTheirOwn) {
  CameraModel model;
  Append(model, {QDate(), QDate(), kMonday});
  EXPECT_EQ(Rows(model), "- 0 1 - 2");
  EXPECT_EQ(model.index(0).data(), "100A, without a date");
}

TEST(CameraModelTest, AHeadlineIsAFolderUntilADayIsKnown) {
  CameraModel model;
  Append(model, {std::nullopt, std::nullopt});
  EXPECT_EQ(model.index(0).data(), "100A");
  SetDays(model, {std::nullopt, kMonday});
  model.Divide();
  EXPECT_EQ(model.index(0).data(), QLocale().toString(kMonday, QLocale::LongFormat));
}

TEST(CameraModelTest, DaysThatArriveMoveNoSelection) {
  CameraModel model;
  Append(model, Days(5));
  QItemSelectionModel selection(&model);
  selection.select(model.IndexOf(3), QItemSelectionModel::Select);
  SetDays(model, {kMonday, kMonday, kSunday, kSunday, kMonday});
  model.Divide();
  EXPECT_EQ(Rows(model), "- 0 1 4 - 2 3");
  ASSERT_EQ(selection.selectedIndexes().size(), 1);
  EXPECT_EQ(model.PictureAt(selection.selectedIndexes()[0].row()), 3);
  SetDays(model, {kMonday, kMonday, kMonday, kMonday, kMonday});
  model.Divide();
  EXPECT_EQ(Rows(model), "- 0 1 2 3 4");
  EXPECT_EQ(model.PictureAt(selection.selectedIndexes()[0].row()), 3);
}

TEST(CameraModelTest, MorePicturesFollow) {
  CameraModel model;
  Append(model, {std::nullopt});
  Append(model, {std::nullopt, std::nullopt});
  EXPECT_EQ(Rows(model), "- 0 1 2");
  EXPECT_EQ(model.IndexOf(2).row(), 3);
  SetDays(model, {kSunday, kMonday});
  model.Divide();
  Append(model, {std::nullopt});
  EXPECT_EQ(Rows(model), "- 1 - 0 2 3");
}

TEST(CameraModelTest, APictureThatChangesIsARowThatChanges) {
  CameraModel model;
  Append(model, {kMonday, kSunday});
  int row = -1;
  QObject::connect(&model, &CameraModel::dataChanged, [&](const QModelIndex& from) { row = from.row(); });
  model.SetThumbnail(1, QImage(1, 1, QImage::Format_RGB32), QDateTime(kSunday, QTime(12, 0)));
  EXPECT_EQ(row, 3);
}

TEST(CameraModelTest, HeadlinesCannotBeChosen) {
  CameraModel model;
  Append(model, {kMonday});
  EXPECT_EQ(model.flags(model.index(0)), Qt::NoItemFlags);
  EXPECT_TRUE(model.flags(model.index(1)).testFlag(Qt::ItemIsSelectable));
}

TEST(CameraModelTest, WithoutPicturesThereIsNothing) {
  CameraModel model;
  Append(model, {kMonday});
  model.Clear();
  model.Divide();
  EXPECT_EQ(model.rowCount(), 0);
  EXPECT_EQ(model.PictureAt(0), -1);
}

}  // namespace
}  // namespace desktop

#include "apps/desktop/CameraModel.h"

#include <gtest/gtest.h>

namespace desktop {
namespace {

Picture Numbered(int number) {
  Picture picture;
  picture.name = "IMG_" + QString::number(number);
  picture.key = "100A/" + picture.name;
  picture.types = QStringList{"JPG", "RAW"};
  picture.bytes = 8100000;
  return picture;
}

QImage Square(int side) {
  QImage image(side, side, QImage::Format_RGB32);
  image.fill(Qt::red);
  return image;
}

const QDateTime kTaken(QDate(2026, 3, 14), QTime(15, 9));

TEST(CameraModelTest, KeepsTheOrderInWhichPicturesCame) {
  CameraModel model;
  model.Append({Numbered(7), Numbered(6)});
  model.Append({Numbered(5)});
  EXPECT_EQ(model.rowCount(), 3);
  EXPECT_EQ(model.index(2).data(), "IMG_5");
}

TEST(CameraModelTest, SaysToAScreenReaderWhatIsSeen) {
  CameraModel model;
  model.Append({Numbered(7)});
  EXPECT_EQ(model.index(0).data(Qt::AccessibleTextRole), "IMG_7, JPG RAW, 8.1 MB, on this computer");
  model.SetNew("1");
  EXPECT_TRUE(model.index(0).data(Qt::AccessibleTextRole).toString().endsWith(", new"));
}

TEST(CameraModelTest, APictureThatWasStoredIsNoLongerNew) {
  CameraModel model;
  model.Append({Numbered(7), Numbered(6)});
  model.SetNew("31");
  model.MarkStored("100A/IMG_7");
  model.MarkStored("100A/unknown");
  EXPECT_FALSE(model.At(0).isNew);
  EXPECT_TRUE(model.At(1).isNew);
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
  model.SetNoThumbnail(0, "damaged", kTaken);
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

}  // namespace
}  // namespace desktop

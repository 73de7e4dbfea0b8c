#include "apps/desktop/PictureDelegate.h"

#include <QPainter>

#include "apps/desktop/CameraModel.h"
#include "apps/desktop/testing/TestApplication.h"

namespace desktop {
namespace {

class PictureDelegateTest : public WindowTest {
 protected:
  PictureDelegateTest() {
    Picture picture;
    picture.name = "IMG_1";
    picture.kinds = 3;
    model_.Append({picture});
  }

  QImage Painted(bool selected, const QPalette& palette = {}) {
    QImage image(200, 200, QImage::Format_RGB32);
    image.fill(palette.color(QPalette::Base));
    QPainter painter(&image);
    QStyleOptionViewItem option;
    option.rect = image.rect();
    option.palette = palette;
    option.state.setFlag(QStyle::State_Selected, selected);
    PictureDelegate(model_).paint(&painter, option, model_.IndexOf(0));
    return image;
  }

  CameraModel model_;
};

TEST_F(PictureDelegateTest, AThumbnailKeepsItsShape) {
  QImage wide(160, 40, QImage::Format_RGB32);
  wide.fill(Qt::red);
  model_.SetThumbnail(0, wide, {});
  const QImage seen = Painted(false);
  EXPECT_EQ(seen.pixelColor(100, 90), QColor(Qt::red));
  EXPECT_NE(seen.pixelColor(100, 30), QColor(Qt::red));
}

TEST_F(PictureDelegateTest, ASelectedAndANewPictureLookDifferent) {
  const QImage plain = Painted(false);
  EXPECT_NE(Painted(true), plain);
  model_.SetMissing("1", kAllKinds);
  const QImage isNew = Painted(false);
  EXPECT_NE(isNew, plain);
  model_.SetMissing("2", 1);
  const QImage isPartlyHere = Painted(false);
  EXPECT_NE(isPartlyHere, plain);
  EXPECT_NE(isPartlyHere, isNew);
}

TEST_F(PictureDelegateTest, TextIsReadableOnADarkPalette) {
  const QImage seen = Painted(false, QPalette(QColor(40, 40, 40)));
  int brightest = 0;
  for (int y = 170; y < 195; ++y) {
    for (int x = 0; x < 200; ++x) brightest = std::max(brightest, qGray(seen.pixel(x, y)));
  }
  EXPECT_GT(brightest, 180);
}

}  // namespace
}  // namespace desktop

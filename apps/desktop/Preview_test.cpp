#include "apps/desktop/Preview.h"

#include <QTest>

#include "apps/desktop/testing/TestApplication.h"

namespace desktop {
namespace {

class PreviewTest : public WindowTest {};

TEST_F(PreviewTest, ArrowsGoToTheNeighbours) {
  Preview preview;
  QList<int> steps;
  preview.onStep = [&](int by) { steps.append(by); };
  for (int key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down}) QTest::keyClick(&preview, Qt::Key(key));
  EXPECT_EQ(steps, QList<int>({-1, 1, -1, 1}));
}

TEST_F(PreviewTest, SpaceEscapeReturnAndAClickGoBack) {
  Preview preview;
  int closed = 0;
  preview.onClose = [&] { ++closed; };
  for (int key : {Qt::Key_Space, Qt::Key_Escape, Qt::Key_Return}) QTest::keyClick(&preview, Qt::Key(key));
  QTest::mouseClick(&preview, Qt::LeftButton);
  EXPECT_EQ(closed, 4);
}

TEST_F(PreviewTest, ShowsThePictureAndReadsItsCaption) {
  Preview preview;
  preview.resize(300, 300);
  QImage green(30, 20, QImage::Format_RGB32);
  green.fill(Qt::green);
  preview.Show(green, "IMG_1, JPG");
  EXPECT_EQ(preview.accessibleDescription(), "IMG_1, JPG");
  EXPECT_EQ(preview.grab().toImage().pixelColor(150, 140), QColor(Qt::green));
  preview.Show(green, "IMG_1, JPG", "It is damaged.");
  EXPECT_EQ(preview.accessibleDescription(), "It is damaged.");
}

}  // namespace
}  // namespace desktop

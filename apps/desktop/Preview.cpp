// The larger view of one picture.
#include "apps/desktop/Preview.h"

#include <QKeyEvent>
#include <QPainter>

#include "apps/desktop/PictureDelegate.h"

namespace desktop {

Preview::Preview() {
  setFocusPolicy(Qt::StrongFocus);
  setAccessibleName(tr("Larger view of a picture"));
}

void Preview::Show(const QImage& image, const QString& caption, const QString& none) {
  image_ = image;
  caption_ = caption;
  none_ = none;
  setAccessibleDescription(none.isEmpty() ? caption : none);
  update();
}

void Preview::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  const int line = fontMetrics().height() * 2;
  const QRect place = rect().adjusted(line / 2, line / 2, -line / 2, -line);
  if (!image_.isNull()) painter.drawImage(Fitted(image_.size(), place), image_);
  painter.drawText(place, Qt::AlignCenter | Qt::TextWordWrap, none_);
  painter.drawText(QRect(0, height() - line, width(), line), Qt::AlignCenter, caption_);
}

void Preview::keyPressEvent(QKeyEvent* event) {
  const int key = event->key();
  if (key == Qt::Key_Left || key == Qt::Key_Up) return onStep(-1);
  if (key == Qt::Key_Right || key == Qt::Key_Down) return onStep(1);
  if (key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Escape) return onClose();
  QWidget::keyPressEvent(event);
}

void Preview::mousePressEvent(QMouseEvent*) {
  onClose();
}

}  // namespace desktop

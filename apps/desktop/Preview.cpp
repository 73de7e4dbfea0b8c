// The larger view of one picture.
#include "apps/desktop/Preview.h"

#include <QKeyEvent>
#include <QPainter>

#include "apps/desktop/PictureDelegate.h"

namespace desktop {

Preview::Preview(QWidget* parent) : QWidget(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setAccessibleName(tr("Larger view of a picture"));
}

void Preview::Show(const QImage& image, const QString& caption) {
  image_ = image;
  caption_ = caption;
  sentence_.clear();
  setAccessibleDescription(caption);
  update();
}

void Preview::Explain(const QString& sentence) {
  sentence_ = sentence;
  setAccessibleDescription(sentence);
  update();
}

void Preview::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  const int line = fontMetrics().height() * 2;
  const QRect place = rect().adjusted(line / 2, line / 2, -line / 2, -line);
  if (!image_.isNull()) painter.drawImage(Fitted(image_.size(), place), image_);
  painter.setPen(palette().color(QPalette::WindowText));
  if (!sentence_.isEmpty()) painter.drawText(place, Qt::AlignCenter | Qt::TextWordWrap, sentence_);
  painter.drawText(QRect(0, height() - line, width(), line), Qt::AlignCenter, caption_);
}

void Preview::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Up:
      return onStep(-1);
    case Qt::Key_Right:
    case Qt::Key_Down:
      return onStep(1);
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Escape:
      return onClose();
    default:
      QWidget::keyPressEvent(event);
  }
}

void Preview::mousePressEvent(QMouseEvent*) {
  onClose();
}

}  // namespace desktop

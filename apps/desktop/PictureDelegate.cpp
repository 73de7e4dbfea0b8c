// Draws one picture of the grid.
#include "apps/desktop/PictureDelegate.h"

#include <QAbstractScrollArea>
#include <QImage>
#include <QPainter>
#include <algorithm>

#include "apps/desktop/CameraModel.h"

namespace desktop {
namespace {

constexpr int kSpace = 6;
constexpr qreal kRound = 6;
// In lines of text, so that a larger font has larger pictures.
constexpr int kCellLines = 12;

QColor Faint(const QPalette& palette, int alpha) {
  QColor colour = palette.color(QPalette::Text);
  colour.setAlpha(alpha);
  return colour;
}

void PaintFrame(QPainter& painter, const QStyleOptionViewItem& option) {
  const QRectF cell = QRectF(option.rect).adjusted(2, 2, -2, -2);
  QColor accent = option.palette.color(QPalette::Highlight);
  if (option.state.testFlag(QStyle::State_Selected)) {
    QColor fill = accent;
    fill.setAlpha(70);
    painter.setBrush(fill);
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(cell, kRound, kRound);
  }
  if (option.state.testFlag(QStyle::State_HasFocus) || option.state.testFlag(QStyle::State_Selected)) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(accent, 2));
    painter.drawRoundedRect(cell, kRound, kRound);
  }
}

void PaintThumbnail(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                    const QRectF& place) {
  const QImage image = index.data(CameraModel::kThumbnail).value<QImage>();
  if (!image.isNull()) return painter.drawImage(Fitted(image.size(), place), image);
  painter.setPen(Qt::NoPen);
  painter.setBrush(Faint(option.palette, 18));
  painter.drawRoundedRect(place, kRound, kRound);
}

void PaintCaption(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index, QRectF place) {
  if (index.data(CameraModel::kIsNew).toBool()) {
    const qreal dot = option.fontMetrics.height() * 0.5;
    painter.setPen(Qt::NoPen);
    painter.setBrush(option.palette.color(QPalette::Highlight));
    painter.drawEllipse(QRectF(place.left(), place.center().y() - dot / 2, dot, dot));
    place.setLeft(place.left() + dot * 1.7);
  }
  const QString types = index.data(CameraModel::kTypes).toString();
  const qreal width = option.fontMetrics.horizontalAdvance(types);
  painter.setPen(Faint(option.palette, 150));
  painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter, types);
  painter.setPen(option.palette.color(QPalette::Text));
  const int left = static_cast<int>(place.width() - width) - kSpace;
  painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter,
                   option.fontMetrics.elidedText(index.data().toString(), Qt::ElideMiddle, left));
}

void PaintHeadline(QPainter& painter, const QStyleOptionViewItem& option, const QString& text) {
  QFont font = option.font;
  font.setBold(true);
  painter.setFont(font);
  painter.setPen(option.palette.color(QPalette::Active, QPalette::Text));
  painter.drawText(option.rect.adjusted(2 * kSpace, 0, 0, -kSpace), Qt::AlignLeft | Qt::AlignBottom, text);
}

void PaintPicture(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) {
  PaintFrame(painter, option);
  QRectF inside = QRectF(option.rect).adjusted(2 * kSpace, kSpace * 1.5, -2 * kSpace, -kSpace);
  const qreal caption = option.fontMetrics.height() * 1.4;
  PaintThumbnail(painter, option, index, inside.adjusted(0, 0, 0, -caption));
  PaintCaption(painter, option, index, QRectF(inside.left(), inside.bottom() - caption, inside.width(), caption));
}

}  // namespace

QRectF Fitted(QSizeF picture, const QRectF& place) {
  QRectF fitted(QPointF(), picture.scaled(place.size(), Qt::KeepAspectRatio));
  fitted.moveCenter(place.center());
  return fitted;
}

void PictureDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  painter->save();
  painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  index.data(CameraModel::kIsHeadline).toBool() ? PaintHeadline(*painter, option, index.data().toString())
                                                : PaintPicture(*painter, option, index);
  painter->restore();
}

QSize PictureDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  // A list breaks a line that is as wide as its place.
  const int width = static_cast<const QAbstractScrollArea*>(option.widget)->maximumViewportSize().width() - 1;
  const int line = option.fontMetrics.height();
  if (index.data(CameraModel::kIsHeadline).toBool()) return {width, line * 5 / 2};
  const int cell = width / std::max(1, width / (kCellLines * line));
  return {cell, cell * 3 / 4 + line * 2};
}

}  // namespace desktop

// Draws one picture of the grid.
#include "apps/desktop/PictureDelegate.h"

#include <QAbstractScrollArea>
#include <QPainter>
#include <algorithm>

namespace desktop {
namespace {

constexpr int kSpace = 6;
constexpr qreal kRound = 6;
// In lines of text, so that a larger font has larger pictures.
constexpr int kCellLines = 12;

QColor Faint(QColor colour, int alpha) {
  colour.setAlpha(alpha);
  return colour;
}

void PaintFrame(QPainter& painter, const QStyleOptionViewItem& option) {
  const bool isSelected = option.state.testFlag(QStyle::State_Selected);
  if (!isSelected && !option.state.testFlag(QStyle::State_HasFocus)) return;
  const QColor accent = option.palette.color(QPalette::Highlight);
  painter.setBrush(isSelected ? QBrush(Faint(accent, 70)) : QBrush());
  painter.setPen(QPen(accent, 2));
  painter.drawRoundedRect(QRectF(option.rect).adjusted(2, 2, -2, -2), kRound, kRound);
}

void PaintThumbnail(QPainter& painter, const QPalette& palette, const QImage& image, const QRectF& place) {
  if (!image.isNull()) return painter.drawImage(Fitted(image.size(), place), image);
  painter.setPen(Qt::NoPen);
  painter.setBrush(Faint(palette.color(QPalette::Text), 18));
  painter.drawRoundedRect(place, kRound, kRound);
}

// A dot for a new picture, a ring where other kinds of its files are on the camera alone.
void PaintCaption(QPainter& painter, const QStyleOptionViewItem& option, const Picture& picture, bool isNew,
                  QRectF place) {
  if (picture.Misses(kAllKinds)) {
    const qreal dot = option.fontMetrics.height() * 0.5;
    const QColor accent = option.palette.color(QPalette::Highlight);
    painter.setPen(accent);
    painter.setBrush(isNew ? QBrush(accent) : QBrush());
    painter.drawEllipse(QRectF(place.left(), place.center().y() - dot / 2, dot, dot));
    place.setLeft(place.left() + dot * 1.7);
  }
  const QString kinds = KindsText(picture.kinds);
  const QColor text = option.palette.color(QPalette::Text);
  painter.setPen(Faint(text, 150));
  painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter, kinds);
  painter.setPen(text);
  const int left = static_cast<int>(place.width()) - option.fontMetrics.horizontalAdvance(kinds) - kSpace;
  painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter,
                   option.fontMetrics.elidedText(picture.name, Qt::ElideMiddle, left));
}

void PaintHeadline(QPainter& painter, const QStyleOptionViewItem& option, const QString& text) {
  QFont font = option.font;
  font.setBold(true);
  painter.setFont(font);
  painter.setPen(option.palette.color(QPalette::Active, QPalette::Text));
  painter.drawText(option.rect.adjusted(2 * kSpace, 0, 0, -kSpace), Qt::AlignLeft | Qt::AlignBottom, text);
}

}  // namespace

QRectF Fitted(QSizeF picture, const QRectF& place) {
  QRectF fitted(QPointF(), picture.scaled(place.size(), Qt::KeepAspectRatio));
  fitted.moveCenter(place.center());
  return fitted;
}

void PictureDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const int picture = pictures_.PictureAt(index.row());
  painter->save();
  painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  if (picture < 0) {
    PaintHeadline(*painter, option, index.data().toString());
  } else {
    const QRectF inside = QRectF(option.rect).adjusted(2 * kSpace, kSpace * 1.5, -2 * kSpace, -kSpace);
    const qreal caption = option.fontMetrics.height() * 1.4;
    PaintFrame(*painter, option);
    PaintThumbnail(*painter, option.palette, pictures_.Thumbnail(picture), inside.adjusted(0, 0, 0, -caption));
    const QRectF below = inside.adjusted(0, inside.height() - caption, 0, 0);
    PaintCaption(*painter, option, pictures_.At(picture), pictures_.IsNew(picture), below);
  }
  painter->restore();
}

QSize PictureDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  // A list breaks a line that is as wide as its place.
  const int width = static_cast<const QAbstractScrollArea*>(option.widget)->maximumViewportSize().width() - 1;
  const int line = option.fontMetrics.height();
  if (pictures_.PictureAt(index.row()) < 0) return {width, line * 5 / 2};
  const int cell = width / std::max(1, width / (kCellLines * line));
  return {cell, cell * 3 / 4 + line * 2};
}

}  // namespace desktop

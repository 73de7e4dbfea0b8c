#ifndef KELVA_APPS_DESKTOP_PICTURE_DELEGATE_H_
#define KELVA_APPS_DESKTOP_PICTURE_DELEGATE_H_

#include <QStyledItemDelegate>

#include "apps/desktop/CameraModel.h"

namespace desktop {

/// A picture of this size as large as it can be within a place, in its middle.
QRectF Fitted(QSizeF picture, const QRectF& place);

/// Draws a row: a headline, or a picture's thumbnail, and below it its name with a dot when it is new, and its types. Cells grow
/// until they fill a line. All colours are the palette's.
class PictureDelegate : public QStyledItemDelegate {
 public:
  explicit PictureDelegate(const CameraModel& pictures) : pictures_(pictures) {}
  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  /// `option` names the scroll area that shows the cells.
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

 private:
  const CameraModel& pictures_;
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_PICTURE_DELEGATE_H_

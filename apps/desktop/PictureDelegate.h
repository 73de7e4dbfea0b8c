#ifndef KELVA_APPS_DESKTOP_PICTURE_DELEGATE_H_
#define KELVA_APPS_DESKTOP_PICTURE_DELEGATE_H_

#include <QStyledItemDelegate>

namespace desktop {

/// Draws one picture of the grid: its thumbnail, and below it its name with a dot when it is new, and its types. All colours are
/// the palette's.
class PictureDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_PICTURE_DELEGATE_H_

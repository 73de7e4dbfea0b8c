#ifndef KELVA_APPS_DESKTOP_GRID_H_
#define KELVA_APPS_DESKTOP_GRID_H_

#include <QCoreApplication>
#include <QListView>
#include <QTimer>
#include <functional>

#include "apps/desktop/CameraModel.h"
#include "apps/desktop/DayLayout.h"

namespace desktop {

/// Shows the pictures of a camera in lines below headlines of days, and says which thumbnails it lacks. A QListView for its
/// selection, its keyboard and its words for screen readers; where pictures stand is DayLayout's.
class Grid : public QListView {
  Q_DECLARE_TR_FUNCTIONS(Grid)

 public:
  explicit Grid(CameraModel& pictures, QWidget* parent = nullptr);

  /// The rows in view whose thumbnails are missing, and after them those of the screens below and above. Called when that changes.
  std::function<void(const QList<int>& rows)> onWanted = [](const QList<int>&) {};
  /// A picture is to be shown larger.
  std::function<void(int row)> onOpen = [](int) {};

  /// The chosen rows, in order.
  QList<int> Chosen() const;

  QRect visualRect(const QModelIndex& index) const override;
  void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
  QModelIndex indexAt(const QPoint& place) const override;
  void doItemsLayout() override;
  void reset() override;

 protected:
  int horizontalOffset() const override { return 0; }
  int verticalOffset() const override;
  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
  void setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) override;
  QRegion visualRegionForSelection(const QItemSelection& selection) const override;
  QModelIndexList selectedIndexes() const override;
  void scrollContentsBy(int dx, int dy) override;
  void updateGeometries() override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void rowsInserted(const QModelIndex& parent, int start, int end) override;
  void dataChanged(const QModelIndex& from, const QModelIndex& to, const QList<int>& roles) override;

 private:
  void PaintHeadline(QPainter& painter, const DayLayout::Section& section) const;
  QString HeadlineOf(const DayLayout::Section& section) const;
  QModelIndex IndexOf(int row) const;
  int Anchor() const;
  int RowNear(QPoint place) const;
  void AskForMissing();

  CameraModel& pictures_;
  DayLayout layout_;
  QTimer relayout_;
  QTimer ask_;
  QSet<int> asked_;
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_GRID_H_

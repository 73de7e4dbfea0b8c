#ifndef KELVA_APPS_DESKTOP_GRID_H_
#define KELVA_APPS_DESKTOP_GRID_H_

#include <QCoreApplication>
#include <QListView>
#include <QSet>
#include <QTimer>
#include <functional>

#include "apps/desktop/PictureDelegate.h"

namespace desktop {

/// Shows the pictures of a camera in lines below headlines of days, and says which thumbnails it lacks.
class Grid : public QListView {
  Q_DECLARE_TR_FUNCTIONS(Grid)

 public:
  /// `pictures` outlives this.
  explicit Grid(CameraModel& pictures);

  /// The pictures in view whose thumbnails are missing, and after them those of the screens below and above. Called when that
  /// changes.
  std::function<void(const QList<int>& pictures)> onWanted = [](const QList<int>&) {};
  /// A picture is to be shown larger.
  std::function<void(int picture)> onOpen = [](int) {};

  /// The chosen pictures, in the order of their numbers.
  QList<int> Chosen() const;

  void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

 protected:
  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void dataChanged(const QModelIndex& from, const QModelIndex& to, const QList<int>& roles) override;

 private:
  QModelIndex First() const;
  int RowBelow(int height) const;
  int Across(int row, int step) const;
  void Divide();
  void AskForMissing();

  CameraModel& pictures_;
  PictureDelegate delegate_{pictures_};
  QTimer divide_;
  QTimer ask_;
  QSet<int> asked_;
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_GRID_H_

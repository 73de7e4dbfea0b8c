#ifndef KELVA_APPS_DESKTOP_DAY_LIST_H_
#define KELVA_APPS_DESKTOP_DAY_LIST_H_

#include <QAbstractListModel>
#include <QCoreApplication>
#include <vector>

#include "apps/desktop/CameraModel.h"

namespace desktop {

/// The pictures of a camera with a headline above each run of pictures of one day. A picture whose day is not known yet stands
/// with the one before it, so that little moves when its day arrives.
class DayList : public QAbstractListModel {
  Q_DECLARE_TR_FUNCTIONS(DayList)

 public:
  /// `pictures` outlives this.
  explicit DayList(const CameraModel& pictures);

  /// Puts headlines where days begin as far as they are known now.
  void Divide();
  /// The picture of a row, or -1 for a headline.
  int PictureAt(int row) const;
  int RowOf(int picture) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  QString Headline(int first) const;

  const CameraModel& pictures_;
  std::vector<int> rows_;  ///< pictures; ~N is the headline above picture N
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_DAY_LIST_H_

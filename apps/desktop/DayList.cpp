// Puts headlines of days among the pictures.
#include "apps/desktop/DayList.h"

#include <QLocale>
#include <algorithm>
#include <optional>

namespace desktop {
namespace {

// Nothing while it is not known; an invalid one for a picture without a time.
std::optional<QDate> DayOf(const Picture& picture) {
  return picture.asked ? std::optional(picture.taken.date()) : std::nullopt;
}

// Rises from row to row: a headline stands above its picture.
int PlaceOf(int row) {
  return row < 0 ? 2 * ~row : 2 * row + 1;
}

std::vector<int> Divided(const CameraModel& pictures) {
  std::vector<int> rows;
  std::optional<QDate> day;
  for (int picture = 0; picture < pictures.rowCount(); ++picture) {
    const std::optional<QDate> own = DayOf(pictures.At(picture));
    const bool begins = picture == 0 || (own && day && *own != *day);
    if (begins) rows.push_back(~picture);
    if (begins || !day) day = own;
    rows.push_back(picture);
  }
  return rows;
}

}  // namespace

DayList::DayList(const CameraModel& pictures) : pictures_(pictures) {
  connect(&pictures, &QAbstractItemModel::rowsInserted, this, [this] { Divide(); });
  connect(&pictures, &QAbstractItemModel::modelReset, this, [this] {
    beginResetModel();
    rows_.clear();
    endResetModel();
  });
  connect(&pictures, &QAbstractItemModel::dataChanged, this,
          [this](const QModelIndex& from, const QModelIndex& to, const QList<int>& roles) {
            Q_EMIT dataChanged(index(RowOf(from.row())), index(RowOf(to.row())), roles);
          });
  Divide();
}

// Row by row, so that a selection stays with its pictures.
void DayList::Divide() {
  const std::vector<int> divided = Divided(pictures_);
  for (std::size_t at = 0; at < divided.size(); ++at) {
    const auto row = static_cast<int>(at);
    const auto place = rows_.begin() + row;
    if (at == rows_.size()) {
      beginInsertRows({}, row, static_cast<int>(divided.size()) - 1);
      rows_.insert(place, divided.begin() + row, divided.end());
      endInsertRows();
    } else if (PlaceOf(*place) < PlaceOf(divided[at])) {
      beginRemoveRows({}, row, row);
      rows_.erase(place);
      endRemoveRows();
      --at;
    } else if (*place != divided[at]) {
      beginInsertRows({}, row, row);
      rows_.insert(place, divided[at]);
      endInsertRows();
    }
  }
  // A headline may have got its day.
  if (!rows_.empty()) Q_EMIT dataChanged(index(0), index(rowCount() - 1), {Qt::DisplayRole});
}

int DayList::PictureAt(int row) const {
  return row < 0 || row >= rowCount() ? -1 : std::max(-1, rows_[static_cast<std::size_t>(row)]);
}

int DayList::RowOf(int picture) const {
  const auto place = std::lower_bound(rows_.begin(), rows_.end(), PlaceOf(picture),
                                      [](int row, int wanted) { return PlaceOf(row) < wanted; });
  return static_cast<int>(place - rows_.begin());
}

int DayList::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant DayList::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const int row = rows_[static_cast<std::size_t>(index.row())];
  if (row >= 0) return pictures_.index(row).data(role);
  if (role == CameraModel::kIsHeadline) return true;
  return role == Qt::DisplayRole ? Headline(~row) : QVariant();
}

Qt::ItemFlags DayList::flags(const QModelIndex& index) const {
  return PictureAt(index.row()) < 0 ? Qt::NoItemFlags : QAbstractListModel::flags(index);
}

QString DayList::Headline(int first) const {
  QString folder = pictures_.At(first).folder;
  for (int row = RowOf(first); PictureAt(row) >= 0; ++row) {
    const std::optional<QDate> day = DayOf(pictures_.At(PictureAt(row)));
    if (!day) continue;
    return day->isValid() ? QLocale().toString(*day, QLocale::LongFormat) : tr("%1, without a date").arg(folder);
  }
  return folder;
}

}  // namespace desktop

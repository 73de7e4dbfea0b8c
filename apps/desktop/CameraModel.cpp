// The pictures of one camera, with headlines of days among them, as a list that views show.
#include "apps/desktop/CameraModel.h"

#include <QHash>
#include <QLocale>
#include <algorithm>
#include <iterator>
#include <numeric>
#include <utility>

#include "apps/desktop/Words.h"

namespace desktop {
namespace {

// Nothing while it is not known; an invalid one where no time is to be had.
std::optional<QDate> DayOf(const Picture& picture) {
  return picture.place ? std::optional(picture.place->date()) : std::nullopt;
}

}  // namespace

int CameraModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant CameraModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const int picture = PictureAt(index.row());
  if (role == Qt::DisplayRole) return picture < 0 ? Headline(index.row()) : At(picture).name;
  const bool describes = role == Qt::AccessibleTextRole || role == Qt::ToolTipRole;
  if (!describes || picture < 0) return {};
  const QString& whyNone = At(picture).whyNone;
  return whyNone.isEmpty() ? Description(picture) : Description(picture) + ", " + whyNone;
}

Qt::ItemFlags CameraModel::flags(const QModelIndex& index) const {
  return PictureAt(index.row()) < 0 ? Qt::NoItemFlags : QAbstractListModel::flags(index);
}

QString CameraModel::Description(int picture) const {
  const Picture& one = At(picture);
  QStringList parts{one.name, KindsText(one.kinds), SizeText(one.bytes)};
  const QDateTime taken = one.taken.value_or(QDateTime());
  if (taken.isValid()) parts.append(QLocale().toString(taken, QLocale::ShortFormat));
  const QString rest = KindsText(one.missing.value_or(0));
  const QString here = rest.isEmpty() ? tr("on this computer") : tr("%1 not on this computer").arg(rest);
  if (one.missing) parts.append(IsNew(picture) ? tr("new") : here);
  return parts.join(", ");
}

QString CameraModel::Headline(int row) const {
  QString folder = At(~rows_[static_cast<std::size_t>(row)]).folder;
  for (int picture = PictureAt(++row); picture >= 0; picture = PictureAt(++row)) {
    const std::optional<QDate> day = DayOf(At(picture));
    if (!day) continue;
    return day->isValid() ? QLocale().toString(*day, QLocale::LongFormat) : tr("%1, without a date").arg(folder);
  }
  return folder;
}

void CameraModel::Clear() {
  beginResetModel();
  pictures_.clear();
  rows_.clear();
  thumbnails_.clear();
  endResetModel();
}

void CameraModel::Append(std::vector<Picture> pictures) {
  if (pictures.empty()) return;
  const int headline = rows_.empty() ? 1 : 0;
  beginInsertRows({}, rowCount(), rowCount() + headline + static_cast<int>(pictures.size()) - 1);
  if (headline > 0) rows_.push_back(~0);
  for (Picture& picture : pictures) {
    rows_.push_back(Count());
    pictures_.push_back(std::move(picture));
  }
  endInsertRows();
}

void CameraModel::Place() {
  const Picture* before = nullptr;
  for (Picture& picture : pictures_) {
    const bool isFirst = before == nullptr || before->folder != picture.folder;
    const bool follows = picture.taken && !picture.taken->isValid() && !isFirst;
    picture.place = follows ? before->place : picture.taken;
    if (picture.taken) before = &picture;
  }
}

// The pictures as they stand. Those with a time are sorted into the places that such pictures have by number.
std::vector<int> CameraModel::Sorted() const {
  std::vector<int> sorted(pictures_.size());
  std::iota(sorted.begin(), sorted.end(), 0);
  const auto isTimed = [this](int picture) { return At(picture).place.value_or(QDateTime()).isValid(); };
  std::vector<int> timed;
  std::copy_if(sorted.begin(), sorted.end(), std::back_inserter(timed), isTimed);
  std::stable_sort(timed.begin(), timed.end(), [this](int one, int two) { return *At(one).place > *At(two).place; });
  auto next = timed.begin();
  for (int& place : sorted) {
    if (isTimed(place)) place = *next++;
  }
  return sorted;
}

// Headlines stay in their rows until Divide looks at them.
void CameraModel::Sort() {
  const std::vector<int> sorted = Sorted();
  std::vector<int> rows;
  auto next = sorted.begin();
  for (const int row : rows_) rows.push_back(row < 0 ? ~*next : *next++);
  if (rows == rows_) return;
  Q_EMIT layoutAboutToBeChanged();
  rows.swap(rows_);
  QHash<int, int> rowOf;
  for (const int row : rows_) rowOf.insert(row, static_cast<int>(rowOf.size()));
  const QModelIndexList before = persistentIndexList();
  QModelIndexList after;
  for (const QModelIndex& was : before) {
    after.append(index(rowOf.value(rows[static_cast<std::size_t>(was.row())], was.row())));
  }
  changePersistentIndexList(before, after);
  Q_EMIT layoutChanged();
}

// Row by row, so that a selection stays with its pictures.
void CameraModel::Divide() {
  Place();
  Sort();
  std::optional<QDate> day;
  for (int row = 0; row < rowCount(); ++row) {
    const bool isHeadline = PictureAt(row) < 0;
    const int picture = PictureAt(isHeadline ? row + 1 : row);
    const std::optional<QDate> own = DayOf(At(picture));
    const bool begins = row == 0 || (own && day && *own != *day);
    if (begins && !isHeadline) {
      beginInsertRows({}, row, row);
      rows_.insert(rows_.begin() + row, ~picture);
      endInsertRows();
    } else if (!begins && isHeadline) {
      beginRemoveRows({}, row, row);
      rows_.erase(rows_.begin() + row);
      endRemoveRows();
    }
    if (begins) ++row;
    if (begins || !day) day = own;
  }
  // A headline may have got its day.
  if (!rows_.empty()) Q_EMIT dataChanged(index(0), index(rowCount() - 1), {Qt::DisplayRole});
}

Picture* CameraModel::Find(int picture) {
  return picture < 0 || picture >= Count() ? nullptr : &pictures_[static_cast<std::size_t>(picture)];
}

void CameraModel::SetMissing(const QString& digits, Kinds meant) {
  meant_ = meant;
  for (int picture = 0; picture < Count(); ++picture) {
    Find(picture)->missing = digits.mid(picture, 1).toUInt(nullptr, 16);
  }
  if (!rows_.empty()) Q_EMIT dataChanged(index(0), index(rowCount() - 1), {Qt::AccessibleTextRole});
}

void CameraModel::MarkStored(const QString& key, Kinds kind) {
  const auto stored =
      std::find_if(pictures_.begin(), pictures_.end(), [&](const Picture& one) { return one.key == key; });
  if (stored == pictures_.end() || !stored->Misses(kind)) return;
  *stored->missing &= ~kind;
  const QModelIndex changed = IndexOf(static_cast<int>(stored - pictures_.begin()));
  Q_EMIT dataChanged(changed, changed, {Qt::AccessibleTextRole});
}

void CameraModel::SetBytes(int picture, qint64 bytes) {
  if (Picture* found = Find(picture)) found->bytes = bytes;
}

void CameraModel::SetThumbnail(int picture, const QImage& image, const QDateTime& taken, const QString& whyNone) {
  Picture* found = Find(picture);
  if (found == nullptr) return;
  if (!image.isNull()) thumbnails_.insert(picture, new QImage(image), image.sizeInBytes());
  found->whyNone = whyNone;
  found->taken = taken;
  Q_EMIT dataChanged(IndexOf(picture), IndexOf(picture), {Qt::DecorationRole});
}

QImage CameraModel::Thumbnail(int picture) const {
  const QImage* image = thumbnails_.object(picture);
  return image == nullptr ? QImage() : *image;
}

int CameraModel::PictureAt(int row) const {
  return row < 0 || row >= rowCount() ? -1 : std::max(-1, rows_[static_cast<std::size_t>(row)]);
}

QModelIndex CameraModel::IndexOf(int picture) const {
  return index(static_cast<int>(std::find(rows_.begin(), rows_.end(), picture) - rows_.begin()));
}

int CameraModel::Beside(int picture, int step) const {
  int row = IndexOf(picture).row() + step;
  if (PictureAt(row) < 0) row += step;  // over a headline
  return PictureAt(row) < 0 ? picture : PictureAt(row);
}

}  // namespace desktop

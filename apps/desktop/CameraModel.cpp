// The pictures of one camera, with headlines of days among them, as a list that views show.
#include "apps/desktop/CameraModel.h"

#include <QLocale>
#include <algorithm>
#include <utility>

#include "apps/desktop/Words.h"

namespace desktop {
namespace {

// Nothing while it is not known; an invalid one for a picture without a time.
std::optional<QDate> DayOf(const Picture& picture) {
  return picture.taken ? std::optional(picture.taken->date()) : std::nullopt;
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
  return describes && picture >= 0 ? Description(picture) : QVariant();
}

Qt::ItemFlags CameraModel::flags(const QModelIndex& index) const {
  return PictureAt(index.row()) < 0 ? Qt::NoItemFlags : QAbstractListModel::flags(index);
}

QString CameraModel::Description(int picture) const {
  const Picture& one = At(picture);
  QStringList parts{one.name, one.types, SizeText(one.bytes)};
  const QDateTime taken = one.taken.value_or(QDateTime());
  if (taken.isValid()) parts.append(QLocale().toString(taken, QLocale::ShortFormat));
  parts.append(one.isNew ? tr("new") : tr("on this computer"));
  if (!one.whyNone.isEmpty()) parts.append(one.whyNone);
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

// Row by row, so that a selection stays with its pictures.
void CameraModel::Divide() {
  std::optional<QDate> day;
  int row = 0;
  for (int picture = 0; picture < Count(); ++picture, ++row) {
    const std::optional<QDate> own = DayOf(At(picture));
    const bool begins = picture == 0 || (own && day && *own != *day);
    const bool isHeadline = PictureAt(row) < 0;
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

void CameraModel::SetNew(const QString& digits) {
  for (int picture = 0; picture < Count(); ++picture) {
    Find(picture)->isNew = picture < digits.size() && digits[picture] != '0';
  }
  if (!rows_.empty()) Q_EMIT dataChanged(index(0), index(rowCount() - 1), {Qt::AccessibleTextRole});
}

void CameraModel::MarkStored(const QString& key) {
  const auto stored =
      std::find_if(pictures_.begin(), pictures_.end(), [&](const Picture& one) { return one.key == key; });
  if (stored == pictures_.end() || !std::exchange(stored->isNew, false)) return;
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
  // A headline goes before its picture and counts as it.
  const auto place = std::lower_bound(rows_.begin(), rows_.end(), picture,
                                      [](int row, int wanted) { return std::max(row, ~row) < wanted; });
  const auto row = static_cast<int>(place - rows_.begin());
  return index(PictureAt(row) < 0 ? row + 1 : row);
}

}  // namespace desktop

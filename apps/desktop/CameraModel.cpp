// The pictures of one camera as a list that views show.
#include "apps/desktop/CameraModel.h"

#include <QLocale>

#include "apps/desktop/Words.h"

namespace desktop {

int CameraModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(pictures_.size());
}

QVariant CameraModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const Picture& picture = At(index.row());
  switch (role) {
    case Qt::DisplayRole:
      return picture.name;
    case Qt::AccessibleTextRole:
    case Qt::ToolTipRole:
      return Described(picture);
    case kThumbnail:
      return Thumbnail(index.row());
    case kIsNew:
      return picture.isNew;
    case kTypes:
      return picture.types.join(' ');
    default:
      return {};
  }
}

QString CameraModel::Described(const Picture& picture) const {
  QStringList parts{picture.name, picture.types.join(' '), SizeText(picture.bytes)};
  if (picture.taken.isValid()) parts.append(QLocale().toString(picture.taken, QLocale::ShortFormat));
  parts.append(picture.isNew ? tr("new") : tr("on this computer"));
  if (!picture.whyNone.isEmpty()) parts.append(picture.whyNone);
  return parts.join(", ");
}

void CameraModel::Clear() {
  beginResetModel();
  pictures_.clear();
  rows_.clear();
  rowsByKey_.clear();
  thumbnails_.clear();
  endResetModel();
}

void CameraModel::Append(std::vector<Picture> pictures) {
  if (pictures.empty()) return;
  const int first = rowCount();
  beginInsertRows({}, first, first + static_cast<int>(pictures.size()) - 1);
  for (Picture& picture : pictures) {
    rows_.insert(picture.index, rowCount());
    rowsByKey_.insert(picture.key, rowCount());
    pictures_.push_back(std::move(picture));
  }
  endInsertRows();
}

void CameraModel::SetNew(const QSet<int>& indexes) {
  for (Picture& picture : pictures_) picture.isNew = indexes.contains(picture.index);
  if (!pictures_.empty()) emit dataChanged(index(0), index(rowCount() - 1), {kIsNew});
}

void CameraModel::SetBytes(int index, qint64 bytes) {
  const int row = RowOf(index);
  if (row >= 0) pictures_[static_cast<std::size_t>(row)].bytes = bytes;
}

void CameraModel::MarkStored(const QString& key) {
  const int row = rowsByKey_.value(key, -1);
  if (row < 0 || !At(row).isNew) return;
  pictures_[static_cast<std::size_t>(row)].isNew = false;
  Changed(row, {kIsNew});
}

void CameraModel::SetThumbnail(int index, const QImage& image, const QDateTime& taken) {
  const int row = RowOf(index);
  if (row < 0) return;
  SetNoThumbnail(index, {}, taken);
  thumbnails_.insert(row, new QImage(image), image.sizeInBytes());
}

void CameraModel::SetNoThumbnail(int index, const QString& why, const QDateTime& taken) {
  const int row = RowOf(index);
  if (row < 0) return;
  Picture& picture = pictures_[static_cast<std::size_t>(row)];
  picture.asked = true;
  picture.whyNone = why;
  picture.taken = taken;
  Changed(row, {kThumbnail});
}

QImage CameraModel::Thumbnail(int row) const {
  const QImage* image = thumbnails_.object(row);
  return image == nullptr ? QImage() : *image;
}

bool CameraModel::Lacks(int row) const {
  return At(row).whyNone.isEmpty() && !thumbnails_.contains(row);
}

void CameraModel::Changed(int row, const QList<int>& roles) {
  emit dataChanged(index(row), index(row), roles);
}

}  // namespace desktop

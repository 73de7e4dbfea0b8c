// The pictures of one camera as a list that views show.
#include "apps/desktop/CameraModel.h"

#include <QLocale>
#include <utility>

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
  rowsByKey_.clear();
  thumbnails_.clear();
  endResetModel();
}

void CameraModel::Append(std::vector<Picture> pictures) {
  if (pictures.empty()) return;
  const int first = rowCount();
  beginInsertRows({}, first, first + static_cast<int>(pictures.size()) - 1);
  for (Picture& picture : pictures) {
    rowsByKey_.insert(picture.key, rowCount());
    pictures_.push_back(std::move(picture));
  }
  endInsertRows();
}

Picture* CameraModel::Find(int row) {
  return row < 0 || row >= rowCount() ? nullptr : &pictures_[static_cast<std::size_t>(row)];
}

void CameraModel::SetNew(const QString& digits) {
  for (int row = 0; row < rowCount(); ++row) Find(row)->isNew = row < digits.size() && digits[row] != '0';
  if (!pictures_.empty()) Q_EMIT dataChanged(index(0), index(rowCount() - 1), {kIsNew});
}

void CameraModel::SetBytes(int row, qint64 bytes) {
  if (Picture* picture = Find(row)) picture->bytes = bytes;
}

void CameraModel::MarkStored(const QString& key) {
  const int row = rowsByKey_.value(key, -1);
  Picture* picture = Find(row);
  if (picture == nullptr || !std::exchange(picture->isNew, false)) return;
  Changed(row, {kIsNew});
}

void CameraModel::SetThumbnail(int row, const QImage& image, const QDateTime& taken) {
  if (Find(row) == nullptr) return;
  thumbnails_.insert(row, new QImage(image), image.sizeInBytes());
  SetNoThumbnail(row, {}, taken);
}

void CameraModel::SetNoThumbnail(int row, const QString& why, const QDateTime& taken) {
  Picture* picture = Find(row);
  if (picture == nullptr) return;
  picture->asked = true;
  picture->whyNone = why;
  picture->taken = taken;
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
  Q_EMIT dataChanged(index(row), index(row), roles);
}

}  // namespace desktop

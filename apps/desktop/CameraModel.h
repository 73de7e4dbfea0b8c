#ifndef KELVA_APPS_DESKTOP_CAMERA_MODEL_H_
#define KELVA_APPS_DESKTOP_CAMERA_MODEL_H_

#include <QAbstractListModel>
#include <QCache>
#include <QCoreApplication>
#include <QDateTime>
#include <QHash>
#include <QImage>
#include <QStringList>
#include <vector>

namespace desktop {

/// One picture as the camera's catalogue has it, with what its thumbnail told later.
struct Picture {
  QString key;  ///< the worker's name for it in the list of an import, the same whenever the camera comes back
  QString folder;
  QString name;
  QStringList types;
  qint64 bytes = 0;
  bool isNew = false;
  QDateTime taken;     ///< invalid until its first bytes were read, and where they say no time
  bool asked = false;  ///< whether its first bytes were read
  QString whyNone;     ///< why it has no thumbnail
};

/// The pictures of one camera in the order in which the worker numbers them from 0: newest first. Thumbnails lie in a bounded cache; one
/// that was dropped is asked for again when it comes into view.
class CameraModel : public QAbstractListModel {
  Q_DECLARE_TR_FUNCTIONS(CameraModel)

 public:
  enum Role { kThumbnail = Qt::UserRole, kIsNew, kTypes, kIsHeadline };
  static constexpr qsizetype kCacheBytes = 48 * 1024 * 1024;

  using QAbstractListModel::QAbstractListModel;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

  void Clear();
  void Append(std::vector<Picture> pictures);
  /// Which pictures are not on this computer yet: a digit for each one, 0 for those that are.
  void SetNew(const QString& digits);
  void MarkStored(const QString& key);
  /// What the worker says of a number that stands for no picture is ignored.
  void SetBytes(int row, qint64 bytes);
  void SetThumbnail(int row, const QImage& image, const QDateTime& taken);
  void SetNoThumbnail(int row, const QString& why, const QDateTime& taken);

  const Picture& At(int row) const { return pictures_[static_cast<std::size_t>(row)]; }
  QImage Thumbnail(int row) const;
  /// Whether a thumbnail has to be asked for: it is not here, and nothing says that there is none.
  bool Lacks(int row) const;

 private:
  QString Described(const Picture& picture) const;
  Picture* Find(int row);
  void Changed(int row, const QList<int>& roles);

  std::vector<Picture> pictures_;
  QHash<QString, int> rowsByKey_;
  mutable QCache<int, QImage> thumbnails_{kCacheBytes};
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_CAMERA_MODEL_H_

#ifndef KELVA_APPS_DESKTOP_CAMERA_MODEL_H_
#define KELVA_APPS_DESKTOP_CAMERA_MODEL_H_

#include <QAbstractListModel>
#include <QCache>
#include <QCoreApplication>
#include <QDateTime>
#include <QHash>
#include <QImage>
#include <QSet>
#include <QStringList>
#include <optional>
#include <vector>

namespace desktop {

/// One picture as the camera's catalogue has it, with what its thumbnail told later.
struct Picture {
  int index = 0;  ///< the worker's number for it
  QString key;    ///< the worker's name for it in the list of an import, the same whenever the camera comes back
  QString folder;
  QString name;
  QStringList types;
  qint64 bytes = 0;
  bool isNew = false;
  QDateTime taken;     ///< invalid until its first bytes were read, and where they say no time
  bool asked = false;  ///< whether its first bytes were read
  QString whyNone;     ///< why it has no thumbnail
};

/// The pictures of one camera, in the order in which the worker names them: newest first. Thumbnails lie in a bounded cache; one
/// that was dropped is asked for again when it comes into view.
class CameraModel : public QAbstractListModel {
  Q_DECLARE_TR_FUNCTIONS(CameraModel)

 public:
  enum Role { kThumbnail = Qt::UserRole, kIsNew, kTypes };
  static constexpr qsizetype kCacheBytes = 48 * 1024 * 1024;

  using QAbstractListModel::QAbstractListModel;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

  void Clear();
  void Append(std::vector<Picture> pictures);
  /// Which pictures are not on this computer yet, by the worker's numbers.
  void SetNew(const QSet<int>& indexes);
  void MarkStored(const QString& key);
  void SetBytes(int index, qint64 bytes);
  void SetThumbnail(int index, const QImage& image, const QDateTime& taken);
  void SetNoThumbnail(int index, const QString& why, const QDateTime& taken);

  const Picture& At(int row) const { return pictures_[static_cast<std::size_t>(row)]; }
  /// The row of a picture, or -1.
  int RowOf(int index) const { return rows_.value(index, -1); }
  QImage Thumbnail(int row) const;
  /// Whether a thumbnail has to be asked for: it is not here, and nothing says that there is none.
  bool Lacks(int row) const;

 private:
  QString Described(const Picture& picture) const;
  void Changed(int row, const QList<int>& roles);

  std::vector<Picture> pictures_;
  QHash<int, int> rows_;
  QHash<QString, int> rowsByKey_;
  mutable QCache<int, QImage> thumbnails_{kCacheBytes};
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_CAMERA_MODEL_H_

#ifndef KELVA_APPS_DESKTOP_CAMERA_MODEL_H_
#define KELVA_APPS_DESKTOP_CAMERA_MODEL_H_

#include <QAbstractListModel>
#include <QCache>
#include <QCoreApplication>
#include <QDateTime>
#include <QImage>
#include <optional>
#include <vector>

#include "apps/desktop/Settings.h"

namespace desktop {

/// One picture as the camera's catalogue has it, with what its thumbnail told later.
struct Picture {
  QString key;  ///< the worker's name for it in the list of an import, the same whenever the camera comes back
  QString folder;
  QString name;
  Kinds kinds = 0;  ///< of its files
  qint64 bytes = 0;
  std::optional<Kinds> missing = {};    ///< the kinds that are not on this computer; nothing until that is known
  std::optional<QDateTime> taken = {};  ///< nothing until its first bytes were read; invalid where they say no time
  std::optional<QDateTime> place = {};  ///< as taken; without a time, that of the picture before it
  QString whyNone = {};                 ///< why it has no thumbnail

  bool Misses(Kinds of) const { return (missing.value_or(0) & of) != 0; }
};

/// The pictures of one camera, newest first, and a headline above each run of pictures of one day, as rows. The worker numbers the
/// pictures from 0 by folder and number, highest first, and so they stand until they are read. Pictures whose times are known share
/// out their places among themselves; every other picture keeps its own, so that little moves when a time arrives. One that says no
/// time goes with the one before it in its folder. Thumbnails lie in
/// a bounded cache; one that was dropped is asked for again when it comes into view.
class CameraModel : public QAbstractListModel {
  Q_DECLARE_TR_FUNCTIONS(CameraModel)

 public:
  static constexpr qsizetype kCacheBytes = 48 * 1024 * 1024;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

  void Clear();
  void Append(std::vector<Picture> pictures);
  /// A hexadecimal digit for each picture: the kinds of its files that are not on this computer yet. New are the pictures of which
  /// such files are meant.
  void SetMissing(const QString& digits, Kinds meant);
  void MarkStored(const QString& key, Kinds kind);
  /// What the worker says of a number that stands for no picture is ignored.
  void SetBytes(int picture, qint64 bytes);
  /// What its first bytes say: a thumbnail, or why there is none. Changes the role of decorations.
  void SetThumbnail(int picture, const QImage& image, const QDateTime& taken, const QString& whyNone = {});
  /// Puts pictures in the order of their times, and headlines where days begin, as far as both are known now.
  void Divide();

  int Count() const { return static_cast<int>(pictures_.size()); }
  const Picture& At(int picture) const { return pictures_[static_cast<std::size_t>(picture)]; }
  QImage Thumbnail(int picture) const;
  bool IsNew(int picture) const { return At(picture).Misses(meant_); }
  /// All that is seen of it in words: "IMG_7, JPG RAW, 8.1 MB, new".
  QString Description(int picture) const;
  /// Whether a thumbnail has to be asked for: it is not here, and nothing says that there is none.
  bool Lacks(int picture) const { return At(picture).whyNone.isEmpty() && !thumbnails_.contains(picture); }
  /// The picture of a row, or -1 for a headline.
  int PictureAt(int row) const;
  QModelIndex IndexOf(int picture) const;
  /// The picture that stands before it (-1) or after it (1), or itself where there is none.
  int Beside(int picture, int step) const;

 private:
  QString Headline(int row) const;
  void Place();
  std::vector<int> Sorted() const;
  void Sort();
  Picture* Find(int picture);

  std::vector<Picture> pictures_;
  std::vector<int> rows_;  ///< pictures; ~N is the headline above picture N
  Kinds meant_ = kAllKinds;
  QCache<int, QImage> thumbnails_{kCacheBytes};
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_CAMERA_MODEL_H_

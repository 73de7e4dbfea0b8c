#ifndef KELVA_APPS_DESKTOP_IMPORT_RUN_H_
#define KELVA_APPS_DESKTOP_IMPORT_RUN_H_

#include <QCoreApplication>
#include <QJsonObject>
#include <QSet>
#include <QStringList>

#include "apps/desktop/CameraState.h"
#include "apps/desktop/WorkerProcess.h"

namespace desktop {

/// What an import or a deletion has said so far, and how it ended. Text and numbers alone.
class ImportRun {
  Q_DECLARE_TR_FUNCTIONS(ImportRun)

 public:
  /// `keys` are the pictures that are meant.
  ImportRun(bool deletes, const QStringList& keys, const Offer& offer);

  void Hear(const QJsonObject& event);

  bool Deletes() const { return deletes_; }
  const Progress& Now() const { return progress_; }
  /// Whether the camera went away, so that the same run can go on when it is back.
  bool WasCutOff() const { return exit_ == kExitNoCamera || exit_ == kExitGone; }
  bool Succeeded() const { return exit_ == 0 || exit_ == kExitPartial; }
  /// The pictures of which no file failed.
  QStringList Whole() const;
  /// Whether every file that was stored is as its key says or was read twice.
  bool WasChecked() const { return sizeOnly_ == 0; }
  /// The key (folder/name) of the picture that was stored last; empty for another event.
  QString StoredKey() const { return storedKey_; }
  /// How it ended, in one or two sentences.
  QString Ending(bool cancelled) const;
  /// What went wrong, empty when nothing did.
  QString Trouble() const;

 private:
  void HearEnd(const QJsonObject& document);

  bool deletes_;
  QStringList keys_;
  Progress progress_;
  QSet<QString> failedKeys_;
  QString storedKey_;
  int stored_ = 0;
  int failed_ = 0;
  int deleted_ = 0;
  int sizeOnly_ = 0;
  int exit_ = kExitCrashed;
  QStringList failures_;
  QString error_;
};

/// "100ABCDE/IMG_0001" of the camera's path "I:\DCIM\100ABCDE\IMG_0001.JPG".
QString KeyOfPath(const QString& path);

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_IMPORT_RUN_H_

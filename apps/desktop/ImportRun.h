#ifndef KELVA_APPS_DESKTOP_IMPORT_RUN_H_
#define KELVA_APPS_DESKTOP_IMPORT_RUN_H_

#include <QCoreApplication>
#include <QJsonObject>
#include <QStringList>

#include "apps/desktop/WorkerProcess.h"

namespace desktop {

/// How an import or a deletion went, from what its worker says. Text and numbers alone.
class ImportRun {
  Q_DECLARE_TR_FUNCTIONS(ImportRun)

 public:
  /// `keys` are the pictures that are meant.
  ImportRun(bool deletes, const QStringList& keys) : deletes_(deletes), whole_(keys) {}

  void Hear(const QJsonObject& event);

  bool Deletes() const { return deletes_; }
  /// Whether the camera went away, so that the same run can go on when it is back.
  bool WasCutOff() const { return Exit() == ExitCode::kNoCamera || Exit() == ExitCode::kGone; }
  /// After an import that was not cut short: the pictures of which no file failed.
  QStringList Deletable() const;
  /// How it ended, in one or two sentences; where pictures may be deleted now, the question whether they shall be.
  QString Ending(bool cancelled) const;
  /// What went wrong, empty when nothing did.
  QString Trouble() const;

 private:
  ExitCode Exit() const { return ExitCode{end_["exit"].toInt(static_cast<int>(kCrashed))}; }

  bool deletes_;
  QStringList whole_;
  int stored_ = 0;
  QStringList failures_;
  QJsonObject end_;  ///< the last document
};

/// "100ABCDE/IMG_0001" of the camera's path "I:\DCIM\100ABCDE\IMG_0001.JPG".
QString KeyOfPath(const QString& path);

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_IMPORT_RUN_H_

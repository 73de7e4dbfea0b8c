#ifndef KELVA_APPS_DESKTOP_IMPORT_RUN_H_
#define KELVA_APPS_DESKTOP_IMPORT_RUN_H_

#include <QCoreApplication>
#include <QJsonObject>
#include <QSet>
#include <QStringList>

#include "apps/desktop/Settings.h"
#include "apps/desktop/WorkerProcess.h"

namespace desktop {

/// How an import or a deletion went, from what its worker says. Text and numbers alone.
class ImportRun {
  Q_DECLARE_TR_FUNCTIONS(ImportRun)

 public:
  /// `keys` are the pictures, `before` those of them of which a file had been imported before, `meant` the kinds of files.
  ImportRun(bool deletes, QStringList keys, const QStringList& before, Kinds meant)
      : deletes_(deletes), keys_(std::move(keys)), before_(before.begin(), before.end()), meant_(meant) {}

  /// A process begins it, or goes on with it after a cable was pulled.
  void Begin();
  void Hear(const QJsonObject& event);

  bool Deletes() const { return deletes_; }
  /// Whether the camera went away, so that the same run can go on when it is back.
  bool WasCutOff() const { return Exit() == ExitCode::kNoCamera || Exit() == ExitCode::kGone; }
  /// After an import that was not cut short: the pictures that are whole here, as far as it knows.
  QStringList Deletable() const;
  /// How it ended, in one or two sentences; where pictures may be deleted now, the question whether they shall be.
  QString Ending(bool cancelled) const;
  /// What went wrong, empty when nothing did.
  QString Trouble() const;

 private:
  QString Question(const QStringList& pictures) const;
  ExitCode Exit() const { return ExitCode{end_["exit"].toInt(static_cast<int>(kCrashed))}; }

  bool deletes_;
  QStringList keys_;
  QSet<QString> before_;
  Kinds meant_;
  QSet<QString> here_ = before_;  ///< keys of pictures of which a file was stored, now or before
  QSet<QString> failed_;          ///< and of which one failed
  int stored_ = 0;
  QStringList failures_;
  int sizeOnly_ = 0;  ///< files of which only the size was compared
  QJsonObject end_;   ///< the last document
};

/// "100ABCDE/IMG_0001" of the camera's path "I:\DCIM\100ABCDE\IMG_0001.JPG".
QString KeyOfPath(const QString& path);

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_IMPORT_RUN_H_

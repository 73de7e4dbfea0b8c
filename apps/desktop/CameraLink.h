#ifndef KELVA_APPS_DESKTOP_CAMERA_LINK_H_
#define KELVA_APPS_DESKTOP_CAMERA_LINK_H_

#include <QCoreApplication>
#include <QJsonObject>
#include <QTemporaryFile>
#include <functional>
#include <memory>

#include "apps/desktop/CameraModel.h"
#include "apps/desktop/CameraState.h"
#include "apps/desktop/ImportRun.h"
#include "apps/desktop/Settings.h"
#include "apps/desktop/WorkerProcess.h"

namespace desktop {

/// Makes a worker for the given words of its command line; it is not started yet.
using MakeWorker = std::function<std::unique_ptr<WorkerProcess>(const QStringList& words)>;

/// One camera as the window knows it: the worker that lists and draws, the one that imports, and what both have said. Never
/// waits for either.
class CameraLink {
  Q_DECLARE_TR_FUNCTIONS(CameraLink)

 public:
  CameraLink(MakeWorker makeWorker, const QString& serial);
  ~CameraLink();
  CameraLink(const CameraLink&) = delete;
  CameraLink& operator=(const CameraLink&) = delete;

  /// The state has changed.
  std::function<void()> onChange = [] {};
  /// A picture for the larger view: its row, and the sentence that stands in its place where there is none.
  std::function<void(int row, const QImage& image, const QString& none)> onPreview = [](int, const QImage&,
                                                                                        const QString&) {};

  const CameraState& State() const { return state_; }
  CameraModel& Model() { return model_; }

  /// The cable: the camera is there (again), or gone.
  void Attach();
  void Lose();
  bool IsAttached() const { return attached_; }
  /// Whether something is left to show after the camera went: an import that goes on when it is back.
  bool MustStay() const { return state_.phase == Phase::kImporting || state_.phase == Phase::kCutOff; }

  void SetTarget(const Target& target);
  /// The thumbnails that are wanted now, by row; those asked for before are forgotten.
  void Want(const QList<int>& rows);
  void WantPreview(int row);
  void WantNoPreview();

  /// Imports these rows, or everything new when there are none.
  void Import(const QList<int>& rows);
  void Cancel();
  void Delete();
  void Keep();
  void Retry();
  /// The first step of an end for several cameras at once.
  void BeginClose();

 private:
  QString Serial() const;
  void StartLister();
  void Hear(const QJsonObject& event);
  void HearCamera(const QJsonObject& event);
  void HearPictures(const QJsonObject& event);
  void HearSizes(const QJsonObject& event);
  void HearTarget(const QJsonObject& event);
  void HearPicture(const QJsonObject& event, bool preview);
  void ListerEnded();
  void BeginRun(bool deletes);
  void HearRun(const QJsonObject& event);
  void RunEnded();
  void GoOnLater();
  void Note(const QString& sentence, bool canRetry);
  QStringList KeysOfNew() const;

  MakeWorker makeWorker_;
  CameraModel model_;
  CameraState state_;
  Target target_;
  std::unique_ptr<WorkerProcess> lister_;
  QString lastWords_;  ///< the last error of the lister
  std::unique_ptr<ImportRun> run_;
  std::unique_ptr<WorkerProcess> importer_;
  std::unique_ptr<QTemporaryFile> chosen_;
  QStringList keys_;
  bool all_ = false;
  bool attached_ = false;
  bool cancelled_ = false;
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_CAMERA_LINK_H_

#ifndef KELVA_APPS_DESKTOP_CAMERA_LINK_H_
#define KELVA_APPS_DESKTOP_CAMERA_LINK_H_

#include <QCoreApplication>
#include <QTemporaryFile>
#include <functional>
#include <memory>
#include <optional>

#include "apps/desktop/CameraModel.h"
#include "apps/desktop/CameraState.h"
#include "apps/desktop/ImportRun.h"
#include "apps/desktop/WorkerProcess.h"

namespace desktop {

/// One camera as the window knows it: the worker that lists and draws, the one that imports, and what both have said. Never
/// waits for either.
class CameraLink {
  Q_DECLARE_TR_FUNCTIONS(CameraLink)

 public:
  CameraLink(StartWorker start, const QString& serial);

  /// The state has changed.
  std::function<void()> onChange = [] {};
  /// A picture for the larger view, and the sentence that stands in its place where there is none.
  std::function<void(int picture, const QImage& image, const QString& none)> onPreview;

  const CameraState& State() const { return state_; }
  CameraModel& Model() { return model_; }

  /// The cable: the camera is there (again), or gone.
  void Attach();
  void Lose();
  /// Whether nothing is left to show: the camera went, and no import goes on when it is back.
  bool IsDone() const;

  /// Remembers it, too.
  void SetTarget(const Target& target);
  /// What of these pictures is wanted now ("thumbs", "preview"); what was asked for before is forgotten.
  void Ask(const QString& what, const QList<int>& pictures);

  /// Imports these pictures, or everything new when there are none.
  void Import(const QList<int>& pictures);
  void Cancel();
  void Delete() { run_.emplace(true, keys_, QStringList(), state_.target.Meant()), BeginRun(); }
  void Keep();
  /// Reads the camera anew.
  void Retry();

 private:
  void Hear(const QJsonObject& event);
  void HearCamera(const QJsonObject& event);
  void HearPictures(const QJsonObject& event);
  void HearSizes(const QJsonObject& event);
  void HearTarget(const QJsonObject& event);
  void HearPicture(const QJsonObject& event);
  void ListerEnded(ExitCode exit);
  void Tell(const QStringList& words);
  void BeginRun();
  void HearRun(const QJsonObject& event);
  void RunEnded();
  void Note(const QString& sentence);

  StartWorker start_;
  QStringList camera_;  ///< the words of a command line that name it
  CameraModel model_;
  CameraState state_;
  std::unique_ptr<WorkerProcess> lister_;
  QString lastWords_;  ///< the last error of the lister
  QString fallen_;     ///< why there is none any more, empty while there is
  std::optional<ImportRun> run_;
  std::unique_ptr<WorkerProcess> importer_;
  std::unique_ptr<QTemporaryFile> chosen_;
  QStringList keys_;
  bool all_ = false;
  bool attached_ = false;
  bool cancelled_ = false;
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_CAMERA_LINK_H_

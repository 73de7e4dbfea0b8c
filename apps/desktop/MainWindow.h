#ifndef KELVA_APPS_DESKTOP_MAIN_WINDOW_H_
#define KELVA_APPS_DESKTOP_MAIN_WINDOW_H_

#include <QMap>
#include <QTabWidget>

#include "apps/desktop/CameraPage.h"

namespace desktop {

/// The window: a tab for each camera, or the words that it waits for one.
class MainWindow : public QWidget {
  Q_DECLARE_TR_FUNCTIONS(MainWindow)

 public:
  explicit MainWindow(StartWorker start);

  /// Begins to watch for cameras.
  void Watch();
  /// Brings the window before the others.
  void Raise();

 private:
  void Hear(const QJsonObject& event);
  void HearTrouble(const QJsonObject& event);
  void Attached(const QString& serial, bool present);
  void RemovePage(const QString& serial);
  void ShowPlace();

  StartWorker start_;
  std::unique_ptr<WorkerProcess> watcher_;
  Banner banner_;
  QLabel welcome_{tr("Plug a camera in to see its pictures.")};
  QTabWidget tabs_;
  QMap<QString, CameraPage*> pages_;  ///< by the camera's serial number; `tabs_` owns them
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_MAIN_WINDOW_H_

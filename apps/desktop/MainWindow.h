#ifndef KELVA_APPS_DESKTOP_MAIN_WINDOW_H_
#define KELVA_APPS_DESKTOP_MAIN_WINDOW_H_

#include <QCoreApplication>
#include <QWidget>
#include <memory>

#include "apps/desktop/CameraLink.h"

class QLabel;
class QStackedWidget;
class QTabWidget;

namespace desktop {

class Banner;
class CameraPage;

/// The window: a tab for each camera, or the words that it waits for one.
class MainWindow : public QWidget {
  Q_DECLARE_TR_FUNCTIONS(MainWindow)

 public:
  explicit MainWindow(MakeWorker makeWorker);
  ~MainWindow() override;

  /// Begins to watch for cameras.
  void Watch();
  /// Brings the window before the others.
  void Raise();

 private:
  void Hear(const QJsonObject& event);
  void HearTrouble(const QJsonObject& event);
  void Attached(const QJsonObject& event);
  void Lost(const QString& serial);
  void WatcherEnded();
  CameraPage* PageOf(const QString& serial) const;
  CameraPage* AddPage(const QString& serial);
  void RemovePage(CameraPage* page);
  QList<CameraPage*> Pages() const;
  void ShowPlace();

  MakeWorker makeWorker_;
  std::unique_ptr<WorkerProcess> watcher_;
  Target target_;
  Banner* banner_;
  QStackedWidget* stack_;
  QLabel* welcome_;
  QTabWidget* tabs_;
  bool ready_ = false;  ///< whether the cameras that were there at the start have been named
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_MAIN_WINDOW_H_

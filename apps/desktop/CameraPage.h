#ifndef KELVA_APPS_DESKTOP_CAMERA_PAGE_H_
#define KELVA_APPS_DESKTOP_CAMERA_PAGE_H_

#include <QCoreApplication>
#include <QWidget>
#include <memory>

#include "apps/desktop/CameraLink.h"

class QLabel;
class QStackedWidget;

namespace desktop {

class Banner;
class Grid;
class ImportBar;
class Preview;

/// The page of one camera: what is in the way, its pictures or one of them large, and the bar that imports them.
class CameraPage : public QWidget {
  Q_DECLARE_TR_FUNCTIONS(CameraPage)

 public:
  CameraPage(std::unique_ptr<CameraLink> link, const Target& target, QWidget* parent = nullptr);
  ~CameraPage() override;

  /// The words of the page's tab have changed.
  std::function<void()> onTitle = [] {};
  /// The user has chosen another target.
  std::function<void(const Target& target)> onTarget = [](const Target&) {};
  /// Nothing more is to be shown of a camera that is gone.
  std::function<void()> onDone = [] {};

  CameraLink& Link() { return *link_; }
  /// "Mine K1, battery 75".
  QString Title() const;

 private:
  void Refresh();
  void Open(int row);
  void Step(int by);
  void ClosePreview();

  std::unique_ptr<CameraLink> link_;
  Banner* banner_;
  QStackedWidget* stack_;
  QLabel* empty_;
  Grid* grid_;
  Preview* preview_;
  ImportBar* bar_;
  int open_ = -1;
  QString title_;
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_CAMERA_PAGE_H_

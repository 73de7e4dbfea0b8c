#ifndef KELVA_APPS_DESKTOP_CAMERA_PAGE_H_
#define KELVA_APPS_DESKTOP_CAMERA_PAGE_H_

#include <QStackedWidget>

#include "apps/desktop/Banner.h"
#include "apps/desktop/Grid.h"
#include "apps/desktop/ImportBar.h"
#include "apps/desktop/Preview.h"

namespace desktop {

/// The page of one camera: what is in the way, its pictures or one of them large, and the bar that imports them. The title of this
/// widget is that of its tab: "Mine K1, battery 75".
class CameraPage : public QWidget {
  Q_DECLARE_TR_FUNCTIONS(CameraPage)

 public:
  CameraPage(StartWorker start, const QString& serial);

  /// Nothing more is to be shown of a camera that is gone.
  std::function<void()> onDone = [] {};

  CameraLink& Link() { return link_; }
  /// The pictures have the keyboard, as soon as there are some.
  void TakeKeyboard();

 private:
  void Refresh();
  void Open(int picture);
  void ClosePreview();

  CameraLink link_;
  Banner banner_;
  QStackedWidget stack_;
  QLabel empty_;
  Grid grid_{link_.Model()};
  Preview preview_;
  ImportBar bar_{link_};
  int open_ = -1;
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_CAMERA_PAGE_H_

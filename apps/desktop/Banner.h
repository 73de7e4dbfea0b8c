#ifndef KELVA_APPS_DESKTOP_BANNER_H_
#define KELVA_APPS_DESKTOP_BANNER_H_

#include <QCoreApplication>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <functional>

#include "apps/desktop/CameraState.h"

namespace desktop {

/// One sentence about what is in the way, with the command that mends it and a button that copies it, or one to try again.
/// Hidden while there is nothing to say.
class Banner : public QFrame {
  Q_DECLARE_TR_FUNCTIONS(Banner)

 public:
  Banner();

  std::function<void()> onRetry = [] {};

  void Show(const Notice& notice);

 private:
  Notice shown_;
  QLabel sentence_;
  QLabel command_;
  QPushButton copy_{tr("&Copy command")};
  QPushButton retry_{tr("&Try again")};
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_BANNER_H_

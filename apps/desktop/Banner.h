#ifndef KELVA_APPS_DESKTOP_BANNER_H_
#define KELVA_APPS_DESKTOP_BANNER_H_

#include <QCoreApplication>
#include <QFrame>
#include <functional>

#include "apps/desktop/CameraState.h"

class QLabel;
class QPushButton;

namespace desktop {

/// One sentence about what is in the way, with the command that mends it and a button that copies it, or one to try again.
/// Hidden while there is nothing to say.
class Banner : public QFrame {
  Q_DECLARE_TR_FUNCTIONS(Banner)

 public:
  explicit Banner(QWidget* parent = nullptr);

  std::function<void()> onRetry = [] {};

  void Show(const Notice& notice);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void TakeColours();

  Notice shown_;
  QLabel* sentence_;
  QLabel* command_;
  QPushButton* copy_;
  QPushButton* retry_;
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_BANNER_H_

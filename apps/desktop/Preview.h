#ifndef KELVA_APPS_DESKTOP_PREVIEW_H_
#define KELVA_APPS_DESKTOP_PREVIEW_H_

#include <QCoreApplication>
#include <QImage>
#include <QWidget>
#include <functional>

namespace desktop {

/// One picture as large as the window allows. Arrows go to its neighbours; Space, Escape or a click goes back.
class Preview : public QWidget {
  Q_DECLARE_TR_FUNCTIONS(Preview)

 public:
  Preview();

  /// Goes so many pictures on, or back for a negative number.
  std::function<void(int by)> onStep = [](int) {};
  std::function<void()> onClose = [] {};

  /// Shows a picture; `caption` describes it. A later call with the larger image replaces a thumbnail. `none` says why there is
  /// no larger one.
  void Show(const QImage& image, const QString& caption, const QString& none = {});

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  QImage image_;
  QString caption_;
  QString none_;
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_PREVIEW_H_

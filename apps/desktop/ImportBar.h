#ifndef KELVA_APPS_DESKTOP_IMPORT_BAR_H_
#define KELVA_APPS_DESKTOP_IMPORT_BAR_H_

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include "apps/desktop/CameraLink.h"

namespace desktop {

/// What is selected in the grid, as far as such files are meant.
struct Choice {
  bool isAny = false;  ///< something is selected, whether meant or not
  QList<int> pictures;
  qint64 bytes = 0;
};

/// Below the pictures: where they go, the one button that imports them, and how far that is.
class ImportBar : public QWidget {
  Q_DECLARE_TR_FUNCTIONS(ImportBar)

 public:
  /// What is pressed is asked of `link`, which outlives this.
  explicit ImportBar(CameraLink& link);

  void Show(const CameraState& state, const Choice& choice);

 private:
  QLayout* TargetLine();
  QLayout* WorkLine();
  void TakeTarget(const QString& folder);

  CameraLink& link_;
  Choice choice_;
  QPushButton folder_;
  QComboBox naming_;
  QComboBox types_;
  QCheckBox everything_;
  QProgressBar bar_;
  QLabel message_;
  QPushButton keep_{tr("&Keep")};
  QPushButton delete_{tr("&Delete from the camera")};
  QPushButton cancel_{tr("&Cancel")};
  QPushButton import_{tr("&Import")};
};

/// "Import 37 new pictures (412 MB)", or what else the button says.
QString ImportText(const CameraState& state, const Choice& choice);
/// "12 of 37 files, 96 MB of 412 MB, 31 MB/s, 10 seconds left".
QString ProgressText(const CameraState& state);

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_IMPORT_BAR_H_

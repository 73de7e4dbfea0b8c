#ifndef KELVA_APPS_DESKTOP_IMPORT_BAR_H_
#define KELVA_APPS_DESKTOP_IMPORT_BAR_H_

#include <QCoreApplication>
#include <QWidget>
#include <functional>

#include "apps/desktop/CameraState.h"
#include "apps/desktop/Settings.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;

namespace desktop {

/// What is chosen in the grid.
struct Choice {
  int pictures = 0;
  qint64 bytes = 0;
};

/// Below the pictures: where they go, the one button that imports them, and how far that is.
class ImportBar : public QWidget {
  Q_DECLARE_TR_FUNCTIONS(ImportBar)

 public:
  explicit ImportBar(const Target& target, QWidget* parent = nullptr);

  std::function<void()> onImport = [] {};
  std::function<void()> onCancel = [] {};
  std::function<void()> onDelete = [] {};
  std::function<void()> onKeep = [] {};
  /// Another folder, naming or kind of files was chosen.
  std::function<void(const Target& target)> onTarget = [](const Target&) {};

  void Show(const CameraState& state, const Choice& choice);

 private:
  QLayout* TargetLine();
  QLayout* WorkLine();
  void FillNaming();
  void ShowTarget();
  void ShowOffer(const CameraState& state, const Choice& choice);
  void ShowProgress(const CameraState& state);
  void ShowQuestion(const CameraState& state);
  void AskForFolder();
  void Change(const std::function<void(Target&)>& change);

  Target target_;
  QPushButton* folder_;
  QComboBox* naming_;
  QComboBox* types_;
  QCheckBox* everything_;
  QLabel* message_;
  QPushButton* import_;
  QProgressBar* bar_;
  QLabel* progress_;
  QPushButton* cancel_;
  QPushButton* delete_;
  QPushButton* keep_;
};

/// "Import 37 new pictures (412 MB)", or what else the button says.
QString ImportText(const CameraState& state, const Choice& choice);
/// "12 of 37 files, 96 MB of 412 MB, 31 MB/s, 10 seconds left".
QString ProgressText(const Progress& progress);

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_IMPORT_BAR_H_

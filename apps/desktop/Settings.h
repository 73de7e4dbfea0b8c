#ifndef KELVA_APPS_DESKTOP_SETTINGS_H_
#define KELVA_APPS_DESKTOP_SETTINGS_H_

#include <QString>
#include <QStringList>

namespace desktop {

/// Where pictures go, how they are named there, and which files are meant. The window remembers it.
struct Target {
  QString folder;
  QString pattern;
  QString types;  ///< "jpg,raw"; empty for all
  bool everything = false;

  bool operator==(const Target&) const = default;
  /// The words of the worker's command `target`.
  QStringList Command() const;
  /// The options of an import, with the folder last.
  QStringList Options() const;
};

/// What was remembered; at first the folder Kelva among the user's pictures, with the folders of the camera.
Target RememberedTarget();
void Remember(const Target& target);

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_SETTINGS_H_

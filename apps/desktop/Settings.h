#ifndef KELVA_APPS_DESKTOP_SETTINGS_H_
#define KELVA_APPS_DESKTOP_SETTINGS_H_

#include <QString>
#include <QStringList>

namespace desktop {

/// Kinds of a picture's files: a sum of 1 (JPG), 2 (RAW), 4 (TXT) and 8 (128).
using Kinds = unsigned;
inline constexpr Kinds kAllKinds = 15;
/// "JPG RAW".
QString KindsText(Kinds kinds);
/// The kinds in a text, of any case of letters: "jpg,raw". None in an empty one.
Kinds KindsIn(const QString& text);

/// Where pictures go, how they are named there, and which files are meant. The window remembers it.
struct Target {
  QString folder;
  QString pattern;
  QString types;  ///< "jpg,raw"; empty for all
  bool everything = false;

  bool operator==(const Target&) const = default;
  /// What `types` says.
  Kinds Meant() const { return types.isEmpty() ? kAllKinds : KindsIn(types); }
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

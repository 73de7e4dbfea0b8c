// What the window remembers from one time to the next.
#include "apps/desktop/Settings.h"

#include <QHash>
#include <QSettings>
#include <QStandardPaths>

namespace desktop {
namespace {

constexpr char kFolder[] = "import/folder";
constexpr char kPattern[] = "import/pattern";
constexpr char kTypes[] = "import/types";
constexpr char kEverything[] = "import/everything";

}  // namespace

QString KindsText(Kinds kinds) {
  QStringList words{"JPG", "RAW", "TXT", "128"};
  words.removeIf([kinds](const QString& word) { return (KindsIn(word) & kinds) == 0; });
  return words.join(' ');
}

Kinds KindsIn(const QString& text) {
  static const QHash<QString, Kinds> kinds{{"JPG", 1}, {"RAW", 2}, {"TXT", 4}, {"128", 8}};
  Kinds sum = 0;
  for (const QString& word : text.toUpper().split(',')) sum |= kinds.value(word);
  return sum;
}

QStringList Target::Command() const {
  return {"target", folder, pattern, types, everything ? "1" : "0"};
}

QStringList Target::Options() const {
  QStringList options{"--pattern", pattern};
  if (!types.isEmpty()) options << "--types" << types;
  if (everything) options << "--everything";
  return options << folder;
}

Target RememberedTarget() {
  const QSettings settings;
  const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
  return {settings.value(kFolder, QString(pictures + "/Kelva")).toString(),
          settings.value(kPattern, "{folder}/{name}").toString(), settings.value(kTypes).toString(),
          settings.value(kEverything, false).toBool()};
}

void Remember(const Target& target) {
  QSettings settings;
  settings.setValue(kFolder, target.folder);
  settings.setValue(kPattern, target.pattern);
  settings.setValue(kTypes, target.types);
  settings.setValue(kEverything, target.everything);
}

}  // namespace desktop

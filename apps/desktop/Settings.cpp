// What the window remembers from one time to the next.
#include "apps/desktop/Settings.h"

#include <QSettings>
#include <QStandardPaths>

namespace desktop {
namespace {

constexpr char kFolder[] = "import/folder";
constexpr char kPattern[] = "import/pattern";
constexpr char kTypes[] = "import/types";
constexpr char kEverything[] = "import/everything";

}  // namespace

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

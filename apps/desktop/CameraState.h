#ifndef KELVA_APPS_DESKTOP_CAMERA_STATE_H_
#define KELVA_APPS_DESKTOP_CAMERA_STATE_H_

#include <QJsonObject>
#include <QString>

#include "apps/desktop/Settings.h"

namespace desktop {

/// Something that a user has to know, with what mends it.
struct Notice {
  QString sentence;
  QString command;  ///< to be copied into a terminal; often empty
  bool canRetry = false;

  bool operator==(const Notice&) const = default;
};

enum class Phase {
  kReady,      ///< pictures can be imported
  kImporting,  ///< an import runs
  kCutOff,     ///< the camera went away in mid-import; the import goes on when it is back
  kAsking,     ///< imported; may they be deleted from the camera?
  kDeleting,   ///< a deletion runs
};

/// All that a page shows of a camera beside its pictures. What its workers say in numbers stays as they said it.
struct CameraState {
  QString serial;
  QString name;
  QString battery;  ///< the number that the camera gives; empty where it gives none
  Phase phase = Phase::kReady;
  bool listed = false;
  int others = 0;  ///< files outside the catalogue
  Target target = RememberedTarget();
  QJsonObject offer;     ///< the event `target`: what the folder lacks and is meant; empty until it has come
  QJsonObject progress;  ///< the last event `progress` of an import or a deletion
  Notice notice;
  QString result;  ///< how the last import or deletion ended, and what is asked then; empty before
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_CAMERA_STATE_H_

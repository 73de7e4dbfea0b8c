#ifndef KELVA_APPS_DESKTOP_CAMERA_STATE_H_
#define KELVA_APPS_DESKTOP_CAMERA_STATE_H_

#include <QString>
#include <QStringList>

namespace desktop {

/// Something that a user has to know, with what mends it.
struct Notice {
  QString sentence;
  QString command;  ///< to be copied into a terminal; often empty
  bool canRetry = false;

  bool operator==(const Notice&) const = default;
};

/// What a camera has that the chosen folder lacks.
struct Offer {
  int pictures = 0;
  int files = 0;
  qint64 bytes = -1;  ///< -1 while the sizes are not known
  int others = 0;     ///< files outside the catalogue that are not in the folder and are meant
  qint64 otherBytes = 0;
  QString error;  ///< why the folder cannot be used
};

/// How far an import or a deletion is. -1 stands for a number that is not known.
struct Progress {
  QString phase;  ///< "dates", "reading", "deleting"
  int files = 0;
  int filesTotal = -1;
  qint64 bytes = 0;
  qint64 total = -1;
  qint64 rate = -1;  ///< bytes a second
  QString file;
};

enum class Phase {
  kWaiting,    ///< the camera has not told its pictures yet
  kReady,      ///< pictures can be imported
  kImporting,  ///< an import runs
  kCutOff,     ///< the camera went away in mid-import; the import goes on when it is back
  kAsking,     ///< imported; may they be deleted from the camera?
  kDeleting,   ///< a deletion runs
};

/// All that a page shows of a camera beside its pictures.
struct CameraState {
  QString serial;
  QString name;
  QString battery;  ///< the number that the camera gives; empty where it gives none
  Phase phase = Phase::kWaiting;
  bool listed = false;
  int others = 0;
  qint64 otherBytes = 0;
  bool targetKnown = false;
  Offer offer;
  Progress progress;
  Notice notice;
  QString result;        ///< how the last import or deletion ended; empty before
  int imported = 0;      ///< pictures of the last import that may be deleted
  bool checked = false;  ///< whether each of their files was compared with its key or read twice
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_CAMERA_STATE_H_

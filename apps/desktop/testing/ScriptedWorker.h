#ifndef KELVA_APPS_DESKTOP_TESTING_SCRIPTED_WORKER_H_
#define KELVA_APPS_DESKTOP_TESTING_SCRIPTED_WORKER_H_

#include <QByteArray>
#include <QMap>
#include <QStringList>
#include <memory>

#include "apps/desktop/CameraLink.h"

namespace desktop {

/// Workers that are shell scripts: `scripts` has one for each first word of the command line, and `calls` collects the command
/// lines. A kind without a script waits for the end of its input.
struct ScriptedWorkers {
  QMap<QString, QString> scripts;
  QList<QStringList> calls;

  StartWorker Starter() {
    return [this](const QStringList& words, Listener listener) {
      calls.append(words);
      const QString script = scripts.value(words[0], "cat >/dev/null");
      return std::make_unique<WorkerProcess>("/bin/sh", QStringList{"-c", script, "worker"} + words,
                                             std::move(listener));
    };
  }
};

/// A line of a script that prints one event.
inline QString Say(const QString& json) {
  return "printf '%s\\n' '" + json + "'\n";
}

/// What a camera's worker says of three pictures, the first of them new; then it waits for the end of its input.
inline QString ThreePictures() {
  return Say(R"({"event":"camera","serial":"K1","name":"Mine","battery":75})") +
         Say(R"({"event":"pictures","from":0,"items":[["100A","IMG_3",3,""],["100A","IMG_2",1,""],["100A","IMG_1",1,""]]})") +
         Say(R"({"event":"catalogue","count":3})") +
         Say(R"({"event":"sizes","from":0,"items":[[1000,2000],[10],[1]]})") +
         Say(R"({"event":"others","count":2,"bytes":50,"cut":false})") +
         "read -r target folder rest\n"
         "printf '{\"event\":\"target\",\"folder\":\"%s\",\"new\":\"300\",\"new_pictures\":1,\"new_files\":2,"
         "\"new_bytes\":3000}\\n' \"$folder\"\n"
         "cat >/dev/null";
}

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_TESTING_SCRIPTED_WORKER_H_

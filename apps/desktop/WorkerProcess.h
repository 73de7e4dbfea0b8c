#ifndef KELVA_APPS_DESKTOP_WORKER_PROCESS_H_
#define KELVA_APPS_DESKTOP_WORKER_PROCESS_H_

#include <QJsonObject>
#include <QProcess>
#include <QTimer>
#include <functional>
#include <memory>

#include "apps/commandline/ExitCode.h"

namespace desktop {

using apps::ExitCode;
/// A signal ended it, or it could not be started.
constexpr ExitCode kCrashed{-1};

/// What is done with the words of a worker: both are called on the thread of the window, from the event loop.
struct Listener {
  /// Each line of either stream that is a JSON object, in order.
  std::function<void(const QJsonObject& event)> onEvent;
  /// The process has ended, or could not be started; nothing follows. Must not delete the WorkerProcess within the call.
  std::function<void(ExitCode exit)> onDeath;
};

/// One process of kelva-desktop-worker. Nothing here waits for it but EndAll. Lives on the thread of the window.
class WorkerProcess {
 public:
  /// Starts it.
  WorkerProcess(const QString& program, const QStringList& arguments, Listener listener);
  /// Asks the process to end; soon the event loop ends it with all that it started, also when it hangs.
  ~WorkerProcess();
  /// Without an event loop, at the end of the program: the same for all of them, within half a second.
  static void EndAll();

  /// Sends a command: a line of percent-encoded words with TABs between. Nothing after the process's death.
  void Send(const QStringList& words);
  /// Asks it to end. Its last words are still heard.
  void BeginClose();

 private:
  void Read();

  Listener listener_;
  std::unique_ptr<QProcess> process_;
  QTimer more_;
};

/// Starts a worker with the given words of its command line.
using StartWorker = std::function<std::unique_ptr<WorkerProcess>(const QStringList& words, Listener listener)>;

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_WORKER_PROCESS_H_

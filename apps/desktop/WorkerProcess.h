#ifndef KELVA_APPS_DESKTOP_WORKER_PROCESS_H_
#define KELVA_APPS_DESKTOP_WORKER_PROCESS_H_

#include <QElapsedTimer>
#include <QJsonObject>
#include <QProcess>
#include <QTimer>
#include <functional>
#include <memory>

namespace desktop {

// What matters here of the tool's exit codes.
constexpr int kExitNoCamera = 3;
constexpr int kExitGone = 5;
constexpr int kExitPartial = 6;
constexpr int kExitCrashed = -1;

/// One process of kelva-desktop-worker. Nothing here waits for it but EndAll. Lives on the thread of the window; the two functions
/// are called there, from the event loop.
class WorkerProcess {
 public:
  WorkerProcess(const QString& program, const QStringList& arguments);
  WorkerProcess(const WorkerProcess&) = delete;
  WorkerProcess& operator=(const WorkerProcess&) = delete;
  /// Asks the process to end; soon the event loop ends it with all that it started, also when it hangs.
  ~WorkerProcess();
  /// Without an event loop, at the end of the program: the same for all of them, within half a second.
  static void EndAll();

  /// Each line of either stream that is a JSON object, in order. Set before Start.
  std::function<void(const QJsonObject&)> onEvent;
  /// The process has ended or could not be started; nothing follows. Must not delete this object within the call.
  std::function<void()> onDeath;

  void Start();
  /// Sends a command: a line of percent-encoded words with TABs between. Nothing after the process's death.
  void Send(const QStringList& words);
  /// The exit status after its death; kExitCrashed when a signal ended it or it could not be started.
  int Exit() const { return exit_; }
  /// Asks it to end, as the first step for several at once.
  void BeginClose();

 private:
  void Read();
  bool ReadFrom(QProcess::ProcessChannel channel, const QElapsedTimer& spent);
  void Die();

  std::unique_ptr<QProcess> process_;
  QTimer more_;
  int exit_ = kExitCrashed;
  bool dead_ = false;
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_WORKER_PROCESS_H_

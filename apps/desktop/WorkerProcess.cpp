// Runs a worker: events come as lines of JSON, commands go as lines of words.
#include "apps/desktop/WorkerProcess.h"

#include <signal.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <algorithm>

namespace desktop {
namespace {

// What is read at a time before the window draws and hears its user again.
constexpr qint64 kSliceMs = 8;
// From the end of its input to the end of its life.
constexpr int kPatienceMs = 250;

void Kill(const QProcess& process) {
  const auto group = static_cast<pid_t>(process.processId());
  if (group > 0) ::kill(-group, SIGKILL);
}

ExitCode ExitOf(const QProcess& process) {
  const bool crashed = process.error() == QProcess::FailedToStart || process.error() == QProcess::Crashed;
  return crashed ? kCrashed : ExitCode{process.exitCode()};
}

}  // namespace

WorkerProcess::WorkerProcess(const QString& program, const QStringList& arguments, Listener listener)
    : listener_(std::move(listener)), process_(std::make_unique<QProcess>()) {
  // A group of its own, so that a child which hangs in a camera's command ends with it.
  process_->setChildProcessModifier([] { ::setpgid(0, 0); });
  more_.setSingleShot(true);
  more_.callOnTimeout([this] { Read(); });
  const auto readSoon = [this] { more_.start(0); };
  QObject::connect(process_.get(), &QProcess::readyReadStandardOutput, &more_, readSoon);
  QObject::connect(process_.get(), &QProcess::readyReadStandardError, &more_, readSoon);
  QObject::connect(process_.get(), &QProcess::stateChanged, &more_, readSoon);
  process_->start(program, arguments);
}

WorkerProcess::~WorkerProcess() {
  process_->disconnect();
  if (process_->state() == QProcess::NotRunning) return;
  BeginClose();
  QProcess* process = process_.release();
  process->setParent(qApp);
  QObject::connect(process, &QProcess::finished, process, &QObject::deleteLater);
  QTimer::singleShot(kPatienceMs, process, [process] { Kill(*process); });
}

void WorkerProcess::EndAll() {
  QElapsedTimer spent;
  spent.start();
  for (QProcess* process : qApp->findChildren<QProcess*>()) {
    const auto wait = [&](int patience) {
      return process->waitForFinished(std::max(1, patience - static_cast<int>(spent.elapsed())));
    };
    if (wait(kPatienceMs)) continue;
    Kill(*process);
    // One that not even SIGKILL ends waits in the kernel; QProcess's destructor would wait for it half a minute.
    if (!wait(2 * kPatienceMs)) process->setParent(nullptr);
  }
}

void WorkerProcess::Send(const QStringList& words) {
  if (process_->state() == QProcess::NotRunning) return;
  QByteArrayList encoded;
  for (const QString& word : words) encoded.append(word.toUtf8().toPercentEncoding());
  process_->write(encoded.join('\t') + '\n');
}

void WorkerProcess::BeginClose() {
  process_->closeWriteChannel();
}

// What it said before its end is heard first.
void WorkerProcess::Read() {
  QElapsedTimer spent;
  spent.start();
  for (const auto channel : {QProcess::StandardError, QProcess::StandardOutput}) {
    process_->setReadChannel(channel);
    while (process_->canReadLine()) {
      if (spent.elapsed() >= kSliceMs) return more_.start(0);
      const QJsonDocument line = QJsonDocument::fromJson(process_->readLine());
      if (line.isObject()) listener_.onEvent(line.object());
    }
  }
  if (process_->state() == QProcess::NotRunning) listener_.onDeath(ExitOf(*process_));
}

}  // namespace desktop

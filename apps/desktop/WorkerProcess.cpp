// Runs a worker: events come as lines of JSON, commands go as lines of words.
#include "apps/desktop/WorkerProcess.h"

#include <signal.h>
#include <unistd.h>

#include <QJsonDocument>
#include <QList>
#include <algorithm>
#include <utility>

namespace desktop {
namespace {

// What is read at a time before the window draws and hears its user again.
constexpr qint64 kSliceMs = 8;
// From the end of its input to the end of its life.
constexpr int kPatienceMs = 250;

QList<QProcess*>& Ending() {
  static QList<QProcess*> ending;
  return ending;
}

void Kill(const QProcess& process) {
  const auto group = static_cast<pid_t>(process.processId());
  if (group > 0) ::kill(-group, SIGKILL);
}

}  // namespace

WorkerProcess::WorkerProcess(const QString& program, const QStringList& arguments)
    : process_(std::make_unique<QProcess>()) {
  process_->setProgram(program);
  process_->setArguments(arguments);
  // A group of its own, so that a child which hangs in a camera's command ends with it.
  process_->setChildProcessModifier([] { ::setpgid(0, 0); });
  more_.setSingleShot(true);
  QObject::connect(&more_, &QTimer::timeout, &more_, [this] { Read(); });
  QObject::connect(process_.get(), &QProcess::readyReadStandardOutput, &more_, [this] { more_.start(0); });
  QObject::connect(process_.get(), &QProcess::readyReadStandardError, &more_, [this] { more_.start(0); });
  QObject::connect(process_.get(), &QProcess::finished, &more_, [this](int code, QProcess::ExitStatus status) {
    if (status == QProcess::NormalExit) exit_ = code;
    Die();
  });
  QObject::connect(process_.get(), &QProcess::errorOccurred, &more_, [this](QProcess::ProcessError error) {
    if (error == QProcess::FailedToStart) Die();
  });
}

WorkerProcess::~WorkerProcess() {
  process_->disconnect();
  if (process_->state() == QProcess::NotRunning) return;
  BeginClose();
  QProcess* process = process_.release();
  Ending().append(process);
  QObject::connect(process, &QProcess::finished, process, [process] {
    Ending().removeOne(process);
    process->deleteLater();
  });
  QTimer::singleShot(kPatienceMs, process, [process] { Kill(*process); });
}

void WorkerProcess::EndAll() {
  QElapsedTimer spent;
  spent.start();
  // One that not even SIGKILL ends waits in the kernel; QProcess's destructor would wait for it half a minute.
  for (const auto& [patience, kills] : {std::pair(kPatienceMs, false), std::pair(2 * kPatienceMs, true)}) {
    for (QProcess* process : QList(Ending())) {
      if (kills) Kill(*process);
      process->waitForFinished(std::max(1, patience - static_cast<int>(spent.elapsed())));
    }
  }
}

void WorkerProcess::Start() {
  process_->start();
}

void WorkerProcess::Send(const QStringList& words) {
  if (dead_ || process_->state() == QProcess::NotRunning) return;
  QByteArrayList encoded;
  for (const QString& word : words) encoded.append(word.toUtf8().toPercentEncoding());
  process_->write(encoded.join('\t') + '\n');
}

void WorkerProcess::BeginClose() {
  process_->closeWriteChannel();
}

void WorkerProcess::Read() {
  QElapsedTimer spent;
  spent.start();
  for (const auto channel : {QProcess::StandardError, QProcess::StandardOutput}) {
    if (!ReadFrom(channel, spent)) return more_.start(0);
  }
  if (dead_ && onDeath) onDeath();
}

// False when time is up before the end.
bool WorkerProcess::ReadFrom(QProcess::ProcessChannel channel, const QElapsedTimer& spent) {
  process_->setReadChannel(channel);
  while (process_->canReadLine()) {
    if (spent.elapsed() >= kSliceMs) return false;
    const QJsonDocument line = QJsonDocument::fromJson(process_->readLine());
    if (line.isObject() && onEvent) onEvent(line.object());
  }
  return true;
}

// What it said before its end is heard first.
void WorkerProcess::Die() {
  dead_ = true;
  more_.start(0);
}

}  // namespace desktop

// Follows one import or deletion from its first event to its end.
#include "apps/desktop/ImportRun.h"

namespace desktop {
namespace {

// More sentences than these help nobody.
constexpr int kShownFailures = 3;

}  // namespace

QString KeyOfPath(const QString& path) {
  return path.section('\\', -2, -2) + '/' + path.section('\\', -1).section('.', 0, -2);
}

void ImportRun::Begin() {
  failed_.clear();
  failures_.clear();
  end_ = {};
}

void ImportRun::Hear(const QJsonObject& event) {
  const QString kind = event["event"].toString();
  const QString key = KeyOfPath(event["path"].toString());
  if (kind == "stored") ++stored_;
  if (kind == "stored") here_.insert(key);
  if (kind == "failed") {
    failed_.insert(key);
    failures_.append(event["error"].toString());
  }
  if (!kind.isEmpty() || !event.contains("exit")) return;
  end_ = event;
  sizeOnly_ += event["size_only"].toInt();
}

QString ImportRun::Trouble() const {
  if (Exit() == kCrashed) {
    return tr(
        "The program that imports the pictures has stopped. What it had finished is on this computer; press Import "
        "to go on.");
  }
  QStringList sentences = failures_.mid(0, kShownFailures);
  const int more = end_["failed"].toInt(static_cast<int>(failures_.size())) - static_cast<int>(sentences.size());
  if (more > 0) sentences.append(tr("%n more (file|files) failed.", nullptr, more));
  const QString error = end_["error"].toString();
  if (!error.isEmpty() && !sentences.contains(error)) sentences.append(error);
  return sentences.join(' ');
}

QStringList ImportRun::Deletable() const {
  const bool succeeded = Exit() == ExitCode::kDone || Exit() == ExitCode::kPartial;
  if (!succeeded || deletes_) return {};
  QStringList whole = keys_;
  whole.removeIf([this](const QString& key) { return failed_.contains(key) || !here_.contains(key); });
  return whole;
}

QString ImportRun::Question(const QStringList& pictures) const {
  const auto count = static_cast<int>(pictures.size());
  const QString only = meant_ == kAllKinds ? QString() : tr("%1 only:").arg(KindsText(meant_)) + ' ';
  const auto ask = [&](const char* question) { return only + tr(question, nullptr, count); };
  if (before_.intersects({pictures.begin(), pictures.end()})) {  // the copies may have been changed or removed since
    return ask(QT_TR_NOOP(
        "%n (picture was|pictures were) imported. Check (it|them) once more, and delete (it|them) from the camera?"));
  }
  // Every other file that was stored is as its key says or was read twice.
  return ask(
      sizeOnly_ > 0
          ? QT_TR_NOOP("%n (picture is|pictures are) on this computer. Check (it|them) with a second read, and delete "
                       "(it|them) from the camera?")
          : QT_TR_NOOP("%n (picture is|pictures are) on this computer and checked. Delete (it|them) from the camera?"));
}

QString ImportRun::Ending(bool cancelled) const {
  const QString unplug = tr("You can unplug the camera.");
  if (deletes_) {
    const int deleted = end_["deleted"].toInt();
    return tr("%n (file was|files were) deleted from the camera.", nullptr, deleted) + ' ' + unplug;
  }
  if (cancelled) {
    return tr("Stopped. %n (file is|files are) on this computer; press Import to go on.", nullptr,
              end_["stored"].toInt(stored_));
  }
  const QStringList deletable = Deletable();
  if (!deletable.isEmpty()) return Question(deletable);
  // Files that failed are still on the camera alone.
  return Exit() == ExitCode::kDone ? unplug : QString();
}

}  // namespace desktop

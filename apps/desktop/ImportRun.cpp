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

void ImportRun::Hear(const QJsonObject& event) {
  const QString kind = event["event"].toString();
  if (kind == "stored") ++stored_;
  if (kind == "failed") {
    whole_.removeAll(KeyOfPath(event["path"].toString()));
    failures_.append(event["error"].toString());
  }
  if (kind.isEmpty() && event.contains("exit")) end_ = event;
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
  return succeeded && !deletes_ ? whole_ : QStringList();
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
  const auto whole = static_cast<int>(Deletable().size());
  // Every file that was stored is as its key says or was read twice.
  const bool isChecked = end_["size_only"].toInt() == 0;
  if (whole > 0 && isChecked) {
    return tr("%n (picture is|pictures are) on this computer and checked. Delete (it|them) from the camera?", nullptr,
              whole);
  }
  if (whole > 0) {
    return tr(
        "%n (picture is|pictures are) on this computer. Check (it|them) with a second read, and delete (it|them) "
        "from the camera?",
        nullptr, whole);
  }
  // Files that failed are still on the camera alone.
  return Exit() == ExitCode::kDone ? unplug : QString();
}

}  // namespace desktop

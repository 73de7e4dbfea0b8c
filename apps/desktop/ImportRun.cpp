// Follows one import or deletion from its first event to its end.
#include "apps/desktop/ImportRun.h"

namespace desktop {
namespace {

// More sentences than these help nobody.
constexpr qsizetype kShownFailures = 3;

}  // namespace

QString KeyOfPath(const QString& path) {
  const QString name = path.section('\\', -1);
  return path.section('\\', -2, -2) + '/' + name.section('.', 0, -2);
}

ImportRun::ImportRun(bool deletes, const QStringList& keys, const Offer& offer) : deletes_(deletes), keys_(keys) {
  progress_.phase = deletes ? "deleting" : "reading";
  if (deletes) return;
  progress_.total = offer.bytes;
  progress_.filesTotal = offer.files;
}

QStringList ImportRun::Whole() const {
  QStringList whole;
  for (const QString& key : keys_) {
    if (!failedKeys_.contains(key)) whole.append(key);
  }
  return whole;
}

void ImportRun::Hear(const QJsonObject& event) {
  const QString kind = event["event"].toString();
  storedKey_.clear();
  if (kind == "progress") {
    progress_ = {event["phase"].toString(progress_.phase),
                 event["files"].toInt(progress_.files),
                 event["files_total"].toInt(progress_.filesTotal),
                 event["done"].toInteger(),
                 event["total"].toInteger(-1),
                 event["bytes_per_second"].toInteger(-1),
                 event["file"].toString()};
  } else if (kind == "stored") {
    ++stored_;
    storedKey_ = KeyOfPath(event["path"].toString());
  } else if (kind == "failed") {
    ++failed_;
    failedKeys_.insert(KeyOfPath(event["path"].toString()));
    if (failures_.size() < kShownFailures) failures_.append(event["error"].toString());
  } else if (kind == "error") {
    error_ = event["message"].toString();
  } else if (event.contains("exit")) {
    HearEnd(event);
  }
}

void ImportRun::HearEnd(const QJsonObject& document) {
  exit_ = document["exit"].toInt(kExitCrashed);
  stored_ = document["stored"].toInt(stored_);
  failed_ = document["failed"].toInt(failed_);
  deleted_ = document["deleted"].toInt();
  sizeOnly_ = document["size_only"].toInt();
  error_ = document["error"].toString();
}

QString ImportRun::Trouble() const {
  if (exit_ == kExitCrashed) {
    return tr(
        "The program that imports the pictures has stopped. What it had finished is on this computer; press Import "
        "to go on.");
  }
  QStringList sentences = failures_;
  if (failed_ > failures_.size()) {
    sentences.append(tr("%n more (file|files) failed.", nullptr, failed_ - static_cast<int>(failures_.size())));
  }
  if (!error_.isEmpty() && !sentences.contains(error_)) sentences.append(error_);
  return sentences.join(' ');
}

QString ImportRun::Ending(bool cancelled) const {
  if (deletes_) {
    return tr("%n (file was|files were) deleted from the camera.", nullptr, deleted_) + ' ' +
           tr("You can unplug the camera.");
  }
  if (cancelled) {
    return tr("Stopped. %n (file is|files are) on this computer; press Import to go on.", nullptr, stored_);
  }
  // Files that failed are still on the camera alone.
  return exit_ == 0 ? tr("You can unplug the camera.") : QString();
}

}  // namespace desktop

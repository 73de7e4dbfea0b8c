// What the workers of one camera say, and what is asked of them.
#include "apps/desktop/CameraLink.h"

#include <QJsonArray>
#include <QTimer>
#include <algorithm>

namespace desktop {
namespace {

// An import that ended because the camera was gone, while the camera is there: it came back in between.
constexpr int kBackAlreadyMs = 1000;

QString Decoded(const QString& word) {
  return QString::fromUtf8(QByteArray::fromPercentEncoding(word.toLatin1()));
}

}  // namespace

// A dash stands for the camera without a serial number.
CameraLink::CameraLink(StartWorker start, const QString& serial)
    : start_(std::move(start)), camera_{"--serial", serial.isEmpty() ? "-" : serial} {
  state_.serial = state_.name = serial;
}

void CameraLink::Attach() {
  attached_ = true;
  Retry();
  if (state_.phase == Phase::kCutOff) BeginRun();
}

void CameraLink::Lose() {
  attached_ = false;
  onChange();
}

bool CameraLink::IsDone() const {
  return !attached_ && state_.phase != Phase::kImporting && state_.phase != Phase::kCutOff;
}

void CameraLink::Retry() {
  lastWords_.clear();
  fallen_.clear();
  lister_ = start_(QStringList("camera") + camera_,
                   {[this](const QJsonObject& event) { Hear(event); }, [this](ExitCode exit) { ListerEnded(exit); }});
  Note({});
}

void CameraLink::Hear(const QJsonObject& event) {
  const QString kind = event["event"].toString();
  if (kind == "thumb" || kind == "preview") return HearPicture(event);
  if (kind == "camera") HearCamera(event);
  if (kind == "pictures") HearPictures(event);
  if (kind == "sizes") HearSizes(event);
  if (kind == "target") HearTarget(event);
  if (kind == "error") lastWords_ = event["message"].toString();
  if (kind == "catalogue") state_.listed = true;
  if (kind == "others") state_.others = event["count"].toInt();
  if (kind == "busy") {
    const QString holder = event["holders"].toString();
    return Note(holder.isEmpty() ? tr("Another program uses the camera. The window goes on when it is free.")
                                 : tr("%1 uses the camera. The window goes on when it is free.").arg(holder));
  }
  if (kind == "free") state_.notice = {};
  onChange();
}

void CameraLink::HearCamera(const QJsonObject& event) {
  const QString name = event["name"].toString();
  if (!name.isEmpty() || state_.name.isEmpty()) state_.name = name.isEmpty() ? event["product"].toString() : name;
  if (event.contains("battery")) state_.battery = QString::number(event["battery"].toDouble());
}

void CameraLink::HearPictures(const QJsonObject& event) {
  if (event["from"].toInt() == 0) {
    model_.Clear();
    Tell(state_.target.Command());  // the process that sends a new list may be a new one
  }
  std::vector<Picture> pictures;
  for (const auto& value : event["items"].toArray()) {
    const QJsonArray item = value.toArray();
    const QString folder = item.at(0).toString();
    const QString name = item.at(1).toString();
    pictures.push_back({folder + '/' + name, Decoded(folder), Decoded(name), static_cast<Kinds>(item.at(2).toInt())});
  }
  model_.Append(std::move(pictures));
}

void CameraLink::HearSizes(const QJsonObject& event) {
  int index = event["from"].toInt();
  for (const auto& item : event["items"].toArray()) {
    qint64 sum = 0;
    for (const auto& size : item.toArray()) sum += size.toInteger();
    model_.SetBytes(index++, sum);
  }
}

void CameraLink::HearTarget(const QJsonObject& event) {
  const QString folder = event["folder"].toString();
  if (folder != state_.target.folder && Decoded(folder) != state_.target.folder) return;
  state_.offer = event;
  if (!state_.target.everything) state_.offer.remove("new_others");
  if (!event.contains("error")) model_.SetMissing(event["new"].toString(), state_.target.Meant());
}

void CameraLink::HearPicture(const QJsonObject& event) {
  const int picture = event["index"].toInt(-1);
  const QImage image = QImage::fromData(QByteArray::fromBase64(event["jpeg"].toString().toLatin1()), "JPG");
  const QString why = image.isNull() ? event["none"].toString(tr("The picture cannot be shown.")) : QString();
  if (event["event"] == "preview") return onPreview(picture, image, why);
  model_.SetThumbnail(picture, image, QDateTime::fromString(event["time"].toString().left(19), Qt::ISODate), why);
}

// Without a camera it has nothing to do; the watcher says so too.
void CameraLink::ListerEnded(ExitCode exit) {
  if (exit == ExitCode::kNoCamera || exit == ExitCode::kGone) return onChange();
  // A process that was killed may have said that it was interrupted, which explains nothing.
  const bool explains = exit != kCrashed && !lastWords_.isEmpty();
  fallen_ = explains ? lastWords_ : tr("The program that talks to this camera has stopped.");
  Note({});
}

void CameraLink::Tell(const QStringList& words) {
  if (lister_) lister_->Send(words);
}

void CameraLink::SetTarget(const Target& target) {
  if (target == state_.target) return;
  state_.target = target;
  state_.offer = {};
  Remember(target);
  Tell(target.Command());
  onChange();
}

void CameraLink::Ask(const QString& what, const QList<int>& pictures) {
  QStringList words{what};
  for (int picture : pictures) words.append(QString::number(picture));
  Tell(words);
}

void CameraLink::Import(const QList<int>& pictures) {
  all_ = pictures.isEmpty();
  keys_.clear();
  const Kinds meant = state_.target.Meant();
  QStringList before;
  for (int picture = 0; picture < model_.Count(); ++picture) {
    if (!(all_ ? model_.IsNew(picture) : std::binary_search(pictures.begin(), pictures.end(), picture))) continue;
    const Picture& one = model_.At(picture);
    keys_.append(one.key);
    if ((one.kinds & meant & ~one.missing.value_or(kAllKinds)) != 0) before.append(one.key);
  }
  run_.emplace(false, keys_, before, meant);
  BeginRun();
}

// An import of all says no pictures, so that one which came meanwhile is fetched too. What is deleted is named.
void CameraLink::BeginRun() {
  const bool deletes = run_->Deletes();
  QStringList words = QStringList("import") + camera_;
  Target target = state_.target;
  if (deletes) {
    words << "--delete-after-verify";
    target.everything = false;
  }
  if (deletes || !all_) {
    chosen_ = std::make_unique<QTemporaryFile>();
    if (!chosen_->open()) return Note(tr("The list of pictures cannot be written: %1.").arg(chosen_->errorString()));
    chosen_->write(keys_.join('\n').toUtf8() + '\n');
    chosen_->close();
    words << "--pictures" << chosen_->fileName();
  }
  run_->Begin();
  cancelled_ = false;
  state_.result.clear();
  state_.phase = deletes ? Phase::kDeleting : Phase::kImporting;
  state_.progress = {};
  if (all_) state_.progress = {{"files_total", state_.offer["new_files"]}, {"total", state_.offer["new_bytes"]}};
  importer_ = start_(words + target.Options(),
                     {[this](const QJsonObject& event) { HearRun(event); }, [this](ExitCode) { RunEnded(); }});
  Note({});
}

void CameraLink::HearRun(const QJsonObject& event) {
  run_->Hear(event);
  const QString path = event["path"].toString();
  if (event["event"] == "stored") model_.MarkStored(KeyOfPath(path), KindsIn(path.section('.', -1)));
  if (event["event"] == "progress") state_.progress = event;
  onChange();
}

void CameraLink::RunEnded() {
  if (run_->WasCutOff() && !run_->Deletes() && !cancelled_) {
    state_.phase = Phase::kCutOff;
    QTimer::singleShot(kBackAlreadyMs, &model_, [this] {
      if (attached_ && state_.phase == Phase::kCutOff) BeginRun();
    });
    return Note(
        tr("The cable was pulled, or the camera was switched off. Plug the camera in again and the import goes on."));
  }
  const QStringList deletable = cancelled_ ? QStringList() : run_->Deletable();
  state_.phase = deletable.isEmpty() ? Phase::kReady : Phase::kAsking;
  state_.result = run_->Ending(cancelled_);
  if (!deletable.isEmpty()) {
    keys_ = deletable;
    all_ = false;
  }
  // A lister alone knows what is new now.
  fallen_.isEmpty() ? Tell(run_->Deletes() ? QStringList("list") : state_.target.Command()) : Retry();
  Note(cancelled_ ? QString() : run_->Trouble());
}

void CameraLink::Cancel() {
  cancelled_ = true;
  if (state_.phase == Phase::kImporting) return importer_->BeginClose();
  state_.phase = Phase::kReady;
  Note({});
}

void CameraLink::Keep() {
  state_.phase = Phase::kReady;
  state_.result = tr("You can unplug the camera.");
  onChange();
}

// Without a sentence of its own, that of a lister that has fallen.
void CameraLink::Note(const QString& sentence) {
  state_.notice = {sentence.isEmpty() ? fallen_ : sentence, {}, !fallen_.isEmpty()};
  onChange();
}

}  // namespace desktop

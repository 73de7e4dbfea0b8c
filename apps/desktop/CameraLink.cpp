// What the workers of one camera say, and what is asked of them.
#include "apps/desktop/CameraLink.h"

#include <QDir>
#include <QJsonArray>
#include <QTimer>
#include <algorithm>
#include <array>

namespace desktop {
namespace {

constexpr std::array kTypeNames = {"JPG", "RAW", "TXT", "128"};
// An import that ended because the camera was gone, while the camera is there: it came back in between.
constexpr int kBackAlreadyMs = 1000;

constexpr int kLargestThumbnail = 400;

QString Decoded(const QString& word) {
  return QString::fromUtf8(QByteArray::fromPercentEncoding(word.toLatin1()));
}

QStringList TypesOf(int bits) {
  QStringList types;
  for (std::size_t type = 0; type < kTypeNames.size(); ++type) {
    if ((bits >> type & 1) != 0) types.append(kTypeNames[type]);
  }
  return types;
}

QDateTime TimeOf(const QJsonObject& event) {
  return QDateTime::fromString(event["time"].toString().left(19).replace('T', ' '), "yyyy-MM-dd HH:mm:ss");
}

}  // namespace

CameraLink::CameraLink(MakeWorker makeWorker, const QString& serial)
    : makeWorker_(std::move(makeWorker)), target_(RememberedTarget()) {
  state_.serial = serial;
  state_.name = serial;
}

CameraLink::~CameraLink() = default;

void CameraLink::Attach() {
  attached_ = true;
  StartLister();
  if (state_.phase == Phase::kCutOff) BeginRun(false);
}

void CameraLink::Lose() {
  attached_ = false;
}

// A dash stands for the camera without a serial number.
QString CameraLink::Serial() const {
  return state_.serial.isEmpty() ? "-" : state_.serial;
}

void CameraLink::StartLister() {
  state_.notice = {};
  lastWords_.clear();
  lister_ = makeWorker_({"camera", "--serial", Serial()});
  lister_->onEvent = [this](const QJsonObject& event) { Hear(event); };
  lister_->onDeath = [this] { ListerEnded(); };
  lister_->Start();
  onChange();
}

void CameraLink::Hear(const QJsonObject& event) {
  const QString kind = event["event"].toString();
  if (kind == "camera") HearCamera(event);
  if (kind == "pictures") HearPictures(event);
  if (kind == "sizes") HearSizes(event);
  if (kind == "target") HearTarget(event);
  if (kind == "thumb") return HearPicture(event, false);
  if (kind == "preview") return HearPicture(event, true);
  if (kind == "error") lastWords_ = event["message"].toString();
  if (kind == "catalogue") state_.listed = true;
  if (kind == "others") {
    state_.others = event["count"].toInt();
    state_.otherBytes = event["bytes"].toInteger();
  }
  if (kind == "busy") {
    const QString holder = event["holders"].toString();
    Note(holder.isEmpty() ? tr("Another program uses the camera. The window goes on when it is free.")
                          : tr("%1 uses the camera. The window goes on when it is free.").arg(holder),
         false);
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
    lister_->Send(target_.Command());  // the process that sends a new list may be a new one
  }
  std::vector<Picture> pictures;
  for (const auto& value : event["items"].toArray()) {
    const QJsonArray item = value.toArray();
    Picture picture;
    picture.key = item.at(0).toString() + '/' + item.at(1).toString();
    picture.name = Decoded(item.at(1).toString());
    picture.folder = Decoded(item.at(0).toString());
    picture.types = TypesOf(item.at(2).toInt());
    pictures.push_back(std::move(picture));
  }
  model_.Append(std::move(pictures));
  if (state_.phase == Phase::kWaiting) state_.phase = Phase::kReady;
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
  if (event["folder"].toString() != target_.folder && Decoded(event["folder"].toString()) != target_.folder) return;
  state_.targetKnown = true;
  state_.offer = {event["new_pictures"].toInt(), event["new_files"].toInt(), event["new_bytes"].toInteger(-1), 0, 0,
                  event["error"].toString()};
  if (target_.everything) {
    state_.offer.others = event["new_others"].toInt();
    state_.offer.otherBytes = event["new_others_bytes"].toInteger();
  }
  if (state_.offer.error.isEmpty()) model_.SetNew(event["new"].toString());
}

void CameraLink::HearPicture(const QJsonObject& event, bool preview) {
  const int index = event["index"].toInt(-1);
  const QString none = event["none"].toString();
  QImage image;
  if (none.isEmpty()) image = QImage::fromData(QByteArray::fromBase64(event["jpeg"].toString().toLatin1()), "JPG");
  const QString why = image.isNull() ? (none.isEmpty() ? tr("The picture cannot be shown.") : none) : QString();
  // A worker's thumbnails are smaller; the cache counts on it.
  const bool isLarge = std::max(image.width(), image.height()) > kLargestThumbnail;
  if (isLarge && !preview) image = image.scaled(kLargestThumbnail, kLargestThumbnail, Qt::KeepAspectRatio);
  if (preview) return onPreview(index, image, why);
  image.isNull() ? model_.SetNoThumbnail(index, why, TimeOf(event)) : model_.SetThumbnail(index, image, TimeOf(event));
}

// Without a camera it has nothing to do; the watcher says so too.
void CameraLink::ListerEnded() {
  const int exit = lister_->Exit();
  if (exit != kExitNoCamera && exit != kExitGone) {
    // A process that was killed may have said that it was interrupted, which explains nothing.
    const bool explains = exit != kExitCrashed && !lastWords_.isEmpty();
    Note(explains ? lastWords_ : tr("The program that talks to this camera has stopped."), true);
  }
  onChange();
}

void CameraLink::Retry() {
  StartLister();
}

void CameraLink::SetTarget(const Target& target) {
  if (target == target_) return;
  target_ = target;
  state_.targetKnown = false;
  if (lister_) lister_->Send(target_.Command());
  onChange();
}

void CameraLink::Want(const QList<int>& rows) {
  QStringList words{"thumbs"};
  for (int row : rows) words.append(QString::number(row));
  if (lister_) lister_->Send(words);
}

void CameraLink::WantPreview(int row) {
  if (lister_) lister_->Send({"preview", QString::number(row)});
}

void CameraLink::WantNoPreview() {
  if (lister_) lister_->Send({"preview"});
}

QStringList CameraLink::KeysOfNew() const {
  QStringList keys;
  for (int row = 0; row < model_.rowCount(); ++row) {
    if (model_.At(row).isNew) keys.append(model_.At(row).key);
  }
  return keys;
}

void CameraLink::Import(const QList<int>& rows) {
  all_ = rows.isEmpty();
  keys_.clear();
  for (int row : rows) keys_.append(model_.At(row).key);
  if (all_) keys_ = KeysOfNew();
  BeginRun(false);
}

// An import of all says no pictures, so that one which came meanwhile is fetched too. What is deleted is named.
void CameraLink::BeginRun(bool deletes) {
  QStringList words{"import", "--serial", Serial()};
  Target target = target_;
  if (deletes) {
    words << "--delete-after-verify";
    target.everything = false;
  }
  if (deletes || !all_) {
    chosen_ = std::make_unique<QTemporaryFile>(QDir::tempPath() + "/kelva-desktop-XXXXXX");
    if (!chosen_->open()) {
      return Note(tr("The list of pictures cannot be written: %1.").arg(chosen_->errorString()), false);
    }
    chosen_->write(keys_.join('\n').toUtf8() + '\n');
    chosen_->close();
    words << "--pictures" << chosen_->fileName();
  }
  Offer offer = state_.offer;
  if (!all_) offer.bytes = -1, offer.files = -1;
  run_ = std::make_unique<ImportRun>(deletes, keys_, offer);
  cancelled_ = false;
  state_.notice = {};
  state_.result.clear();
  state_.phase = deletes ? Phase::kDeleting : Phase::kImporting;
  state_.progress = run_->Now();
  importer_ = makeWorker_(words + target.Options());
  importer_->onEvent = [this](const QJsonObject& event) { HearRun(event); };
  importer_->onDeath = [this] { RunEnded(); };
  importer_->Start();
  onChange();
}

void CameraLink::HearRun(const QJsonObject& event) {
  run_->Hear(event);
  if (!run_->StoredKey().isEmpty()) model_.MarkStored(run_->StoredKey());
  state_.progress = run_->Now();
  onChange();
}

void CameraLink::RunEnded() {
  const std::unique_ptr<ImportRun> run = std::move(run_);
  if (run->WasCutOff() && !run->Deletes() && !cancelled_) return GoOnLater();
  state_.phase = Phase::kReady;
  state_.result = run->Ending(cancelled_);
  if (!cancelled_) Note(run->Trouble(), false);
  if (!cancelled_ && !run->Deletes() && run->Succeeded()) {
    keys_ = run->Whole();
    all_ = false;
    state_.imported = static_cast<int>(keys_.size());
    state_.checked = run->WasChecked();
    if (state_.imported > 0) state_.phase = Phase::kAsking;
  }
  if (lister_) lister_->Send(run->Deletes() ? QStringList{"list"} : target_.Command());
  onChange();
}

void CameraLink::GoOnLater() {
  state_.phase = Phase::kCutOff;
  Note(tr("The cable was pulled, or the camera was switched off. Plug the camera in again and the import goes on."),
       false);
  QTimer::singleShot(kBackAlreadyMs, &model_, [this] {
    if (attached_ && state_.phase == Phase::kCutOff) BeginRun(false);
  });
  onChange();
}

void CameraLink::Cancel() {
  if (state_.phase == Phase::kCutOff) {
    state_.phase = Phase::kReady;
    state_.notice = {};
    return onChange();
  }
  cancelled_ = true;
  if (importer_) importer_->BeginClose();
}

void CameraLink::Delete() {
  BeginRun(true);
}

void CameraLink::Keep() {
  state_.phase = Phase::kReady;
  state_.result = tr("You can unplug the camera.");
  onChange();
}

void CameraLink::BeginClose() {
  if (importer_) importer_->BeginClose();
  if (lister_) lister_->BeginClose();
}

void CameraLink::Note(const QString& sentence, bool canRetry) {
  state_.notice = {sentence, {}, canRetry};
}

}  // namespace desktop

// Where pictures go, the button that imports them, and the progress.
#include "apps/desktop/ImportBar.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include "apps/desktop/Words.h"

namespace desktop {
namespace {

constexpr int kSteps = 1000;  // of the bar, which counts in int

QString Home(const QString& path) {
  const QString home = QDir::homePath();
  return path == home || path.startsWith(home + '/') ? '~' + path.mid(home.size()) : path;
}

QLabel* Text() {
  auto* label = new QLabel;
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

}  // namespace

QString ImportText(const CameraState& state, const Choice& choice) {
  const Offer& offer = state.offer;
  if (choice.pictures > 0) {
    return ImportBar::tr("&Import %n selected (picture|pictures) (%1)", nullptr, choice.pictures)
        .arg(SizeText(choice.bytes));
  }
  if (!state.targetKnown) return ImportBar::tr("&Import");
  if (offer.pictures == 0 && offer.others == 0) return ImportBar::tr("No new pictures");
  const qint64 bytes = offer.bytes + offer.otherBytes;
  const QString size = offer.bytes < 0 ? QString() : QString(" (" + SizeText(bytes) + ')');
  if (offer.pictures == 0) return ImportBar::tr("&Import %n other (file|files)", nullptr, offer.others) + size;
  return ImportBar::tr("&Import %n new (picture|pictures)", nullptr, offer.pictures) + size;
}

QString ProgressText(const Progress& progress) {
  QStringList parts;
  if (progress.filesTotal > 0) {
    parts.append(ImportBar::tr("%1 of %n (file|files)", nullptr, progress.filesTotal).arg(progress.files));
  }
  if (progress.total > 0) {
    parts.append(ImportBar::tr("%1 of %2").arg(SizeText(progress.bytes), SizeText(progress.total)));
  }
  if (progress.rate > 0) parts.append(ImportBar::tr("%1/s").arg(SizeText(progress.rate)));
  if (progress.rate > 0 && progress.total > progress.bytes) {
    parts.append(TimeLeftText((progress.total - progress.bytes) / progress.rate));
  }
  if (!parts.isEmpty()) return parts.join(", ");
  return progress.phase == "deleting" ? ImportBar::tr("Deleting\u2026") : ImportBar::tr("Beginning\u2026");
}

ImportBar::ImportBar(const Target& target, QWidget* parent)
    : QWidget(parent),
      target_(target),
      folder_(new QPushButton),
      naming_(new QComboBox),
      types_(new QComboBox),
      everything_(new QCheckBox),
      message_(Text()),
      import_(new QPushButton(tr("&Import"))),
      bar_(new QProgressBar),
      progress_(Text()),
      cancel_(new QPushButton(tr("&Cancel"))),
      delete_(new QPushButton(tr("&Delete from the camera"))),
      keep_(new QPushButton(tr("&Keep"))) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(14, 10, 14, 12);
  layout->setSpacing(8);
  layout->addLayout(TargetLine());
  layout->addLayout(WorkLine());
  FillNaming();
  ShowTarget();
  connect(folder_, &QPushButton::clicked, this, [this] { AskForFolder(); });
  connect(naming_, &QComboBox::currentIndexChanged, this,
          [this] { Change([this](Target& changed) { changed.pattern = naming_->currentData().toString(); }); });
  connect(types_, &QComboBox::currentIndexChanged, this,
          [this] { Change([this](Target& changed) { changed.types = types_->currentData().toString(); }); });
  connect(everything_, &QCheckBox::toggled, this,
          [this](bool on) { Change([on](Target& changed) { changed.everything = on; }); });
  connect(import_, &QPushButton::clicked, this, [this] { onImport(); });
  connect(cancel_, &QPushButton::clicked, this, [this] { onCancel(); });
  connect(delete_, &QPushButton::clicked, this, [this] { onDelete(); });
  connect(keep_, &QPushButton::clicked, this, [this] { onKeep(); });
}

QLayout* ImportBar::TargetLine() {
  auto* line = new QHBoxLayout;
  const auto add = [line](QWidget* widget, const QString& name) {
    auto* label = new QLabel(name);
    label->setBuddy(widget);
    line->addWidget(label);
    line->addWidget(widget);
  };
  add(folder_, tr("&Folder:"));
  add(naming_, tr("&Naming:"));
  add(types_, tr("Fi&les:"));
  naming_->setAccessibleName(tr("Naming"));
  types_->setAccessibleName(tr("Files"));
  for (QComboBox* box : {naming_, types_}) box->view()->setAccessibleName(box->accessibleName());
  line->addStretch();
  line->addWidget(everything_);
  return line;
}

QLayout* ImportBar::WorkLine() {
  auto* line = new QHBoxLayout;
  message_->setObjectName("message");
  bar_->setRange(0, kSteps);
  bar_->setTextVisible(false);
  bar_->setAccessibleName(tr("Progress"));
  import_->setDefault(true);
  import_->setMinimumHeight(import_->sizeHint().height() * 5 / 4);
  line->addWidget(message_, 1);
  line->addWidget(bar_, 1);
  line->addWidget(progress_, 1);
  for (QPushButton* button : {keep_, delete_, cancel_, import_}) line->addWidget(button);
  return line;
}

void ImportBar::FillNaming() {
  naming_->addItem(tr("Folders as on the camera"), "{folder}/{name}");
  naming_->addItem(tr("A folder for each day"), "{year}/{month}/{day}/{name}");
  naming_->addItem(tr("A folder for each month"), "{year}/{month}/{name}");
  naming_->addItem(tr("A folder for each year"), "{year}/{name}");
  if (naming_->findData(target_.pattern) < 0) naming_->addItem(target_.pattern, target_.pattern);
  types_->addItem(tr("All files of a picture"), "");
  types_->addItem(tr("JPG only"), "jpg");
  types_->addItem(tr("RAW only"), "raw");
  if (types_->findData(target_.types) < 0) types_->addItem(target_.types, target_.types);
}

void ImportBar::ShowTarget() {
  folder_->setText(Home(target_.folder));
  folder_->setAccessibleName(tr("Folder: %1").arg(target_.folder));
  naming_->setCurrentIndex(naming_->findData(target_.pattern));
  types_->setCurrentIndex(types_->findData(target_.types));
  everything_->setChecked(target_.everything);
}

void ImportBar::AskForFolder() {
  const QString chosen = QFileDialog::getExistingDirectory(this, tr("Folder for pictures"), target_.folder);
  if (!chosen.isEmpty()) Change([&](Target& changed) { changed.folder = chosen; });
}

void ImportBar::Change(const std::function<void(Target&)>& change) {
  const Target before = target_;
  change(target_);
  if (target_ == before) return;
  ShowTarget();
  onTarget(target_);
}

void ImportBar::Show(const CameraState& state, const Choice& choice) {
  const bool works =
      state.phase == Phase::kImporting || state.phase == Phase::kDeleting || state.phase == Phase::kCutOff;
  const bool asks = state.phase == Phase::kAsking;
  for (QWidget* widget : std::initializer_list<QWidget*>{folder_, naming_, types_, everything_}) {
    widget->setEnabled(!works && !asks);
  }
  everything_->setVisible(state.others > 0);
  everything_->setText(target_.everything
                           ? tr("Import %n other (file|files), such as videos, too", nullptr, state.others)
                           : tr("%n other (file is|files are) not shown. Import (it|them) too", nullptr, state.others));
  bar_->setVisible(works);
  progress_->setVisible(works);
  cancel_->setVisible(state.phase == Phase::kImporting || state.phase == Phase::kCutOff);
  delete_->setVisible(asks);
  keep_->setVisible(asks);
  message_->setVisible(!works);
  import_->setVisible(!works && !asks);
  if (works) return ShowProgress(state);
  if (asks) return ShowQuestion(state);
  ShowOffer(state, choice);
}

void ImportBar::ShowOffer(const CameraState& state, const Choice& choice) {
  const Offer& offer = state.offer;
  message_->setText(offer.error.isEmpty() ? state.result : offer.error);
  import_->setText(ImportText(state, choice));
  const bool something = choice.pictures > 0 || (state.targetKnown && offer.pictures + offer.others > 0);
  import_->setEnabled(something && state.listed && offer.error.isEmpty());
}

void ImportBar::ShowProgress(const CameraState& state) {
  const Progress& progress = state.progress;
  const QString text = state.phase == Phase::kCutOff ? tr("Waiting for the camera\u2026") : ProgressText(progress);
  progress_->setText(text);
  bar_->setMaximum(progress.total > 0 ? kSteps : 0);  // 0 is a bar that only moves
  if (progress.total > 0) bar_->setValue(static_cast<int>(progress.bytes * kSteps / progress.total));
}

void ImportBar::ShowQuestion(const CameraState& state) {
  message_->setText((
      state.checked ? tr("%n (picture is|pictures are) on this computer and checked. Delete (it|them) from the camera?",
                         nullptr, state.imported)
                    : tr("%n (picture is|pictures are) on this computer. Check (it|them) with a second read, and "
                         "delete (it|them) from the camera?",
                         nullptr, state.imported)));
}

}  // namespace desktop

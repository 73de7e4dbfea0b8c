// Where pictures go, the button that imports them, and the progress.
#include "apps/desktop/ImportBar.h"

#include <QAbstractItemView>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>

#include "apps/desktop/Words.h"

namespace desktop {
namespace {

constexpr int kSteps = 1000;  // of the bar, which counts in int

QString Home(const QString& path) {
  const QString home = QDir::homePath();
  return path == home || path.startsWith(home + '/') ? '~' + path.mid(home.size()) : path;
}

// Each item has its words and its value. A value of the user's own is one more.
void Fill(QComboBox& box, std::initializer_list<std::pair<QString, QString>> items, const QString& chosen) {
  for (const auto& [words, value] : items) box.addItem(words, value);
  if (box.findData(chosen) < 0) box.addItem(chosen, chosen);
  box.setCurrentIndex(box.findData(chosen));
}

QString Message(const CameraState& state) {
  if (state.phase == Phase::kCutOff) return ImportBar::tr("Waiting for the camera\u2026");
  if (state.phase == Phase::kImporting || state.phase == Phase::kDeleting) return ProgressText(state);
  return state.phase == Phase::kAsking ? state.result : state.offer["error"].toString(state.result);
}

}  // namespace

QString ImportText(const CameraState& state, const Choice& choice) {
  const auto chosen = static_cast<int>(choice.pictures.size());
  if (chosen > 0) {
    const QString size = state.target.Meant() == kAllKinds ? " (" + SizeText(choice.bytes) + ')' : QString();
    return ImportBar::tr("&Import %n selected (picture|pictures)", nullptr, chosen) + size;
  }
  if (choice.isAny) return ImportBar::tr("No such files selected");
  const QJsonObject& offer = state.offer;
  const int pictures = offer["new_pictures"].toInt();
  const int others = offer["new_others"].toInt();
  if (offer.isEmpty()) return ImportBar::tr("&Import");
  if (pictures == 0 && others == 0) return ImportBar::tr("No new pictures");
  const qint64 bytes = offer["new_bytes"].toInteger() + (others > 0 ? offer["new_others_bytes"].toInteger() : 0);
  const QString size = offer.contains("new_bytes") ? " (" + SizeText(bytes) + ')' : QString();
  if (pictures == 0) return ImportBar::tr("&Import %n other (file|files)", nullptr, others) + size;
  return ImportBar::tr("&Import %n new (picture|pictures)", nullptr, pictures) + size;
}

QString ProgressText(const CameraState& state) {
  const int files = state.progress["files_total"].toInt();
  const qint64 done = state.progress["done"].toInteger();
  const qint64 total = state.progress["total"].toInteger();
  const qint64 rate = state.progress["bytes_per_second"].toInteger();
  QStringList parts;
  if (files > 0) {
    parts.append(ImportBar::tr("%1 of %n (file|files)", nullptr, files).arg(state.progress["files"].toInt()));
  }
  if (total > 0) parts.append(ImportBar::tr("%1 of %2").arg(SizeText(done), SizeText(total)));
  if (rate > 0) parts.append(ImportBar::tr("%1/s").arg(SizeText(rate)));
  if (rate > 0 && total > done) parts.append(TimeLeftText((total - done) / rate));
  if (!parts.isEmpty()) return parts.join(", ");
  return state.phase == Phase::kDeleting ? ImportBar::tr("Deleting\u2026") : ImportBar::tr("Beginning\u2026");
}

ImportBar::ImportBar(CameraLink& link) : link_(link) {
  const Target& target = link.State().target;
  Fill(naming_,
       {{tr("Folders as on the camera"), "{folder}/{name}"},
        {tr("A folder for each day"), "{year}/{month}/{day}/{name}"},
        {tr("A folder for each month"), "{year}/{month}/{name}"},
        {tr("A folder for each year"), "{year}/{name}"}},
       target.pattern);
  Fill(types_, {{tr("All files of a picture"), ""}, {tr("JPG only"), "jpg"}, {tr("RAW only"), "raw"}}, target.types);
  everything_.setChecked(target.everything);
  TakeTarget(target.folder);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(14, 10, 14, 12);
  layout->setSpacing(8);
  layout->addLayout(TargetLine());
  layout->addLayout(WorkLine());

  const auto take = [this] { TakeTarget(link_.State().target.folder); };
  connect(&naming_, &QComboBox::currentIndexChanged, this, take);
  connect(&types_, &QComboBox::currentIndexChanged, this, take);
  connect(&everything_, &QCheckBox::toggled, this, take);
  connect(&folder_, &QPushButton::clicked, this, [this] {
    const QString before = link_.State().target.folder;
    const QString chosen = QFileDialog::getExistingDirectory(this, tr("Folder for pictures"), before);
    if (!chosen.isEmpty()) TakeTarget(chosen);
  });
  connect(&import_, &QPushButton::clicked, this, [this] { link_.Import(choice_.pictures); });
  connect(&cancel_, &QPushButton::clicked, this, [this] { link_.Cancel(); });
  connect(&delete_, &QPushButton::clicked, this, [this] { link_.Delete(); });
  connect(&keep_, &QPushButton::clicked, this, [this] { link_.Keep(); });
}

QLayout* ImportBar::TargetLine() {
  auto* line = new QHBoxLayout;
  const auto add = [line](QWidget* widget, const QString& name) {
    auto* label = new QLabel(name);
    label->setBuddy(widget);
    line->addWidget(label);
    line->addWidget(widget);
  };
  add(&folder_, tr("&Folder:"));
  add(&naming_, tr("&Naming:"));
  add(&types_, tr("Fi&les:"));
  naming_.setAccessibleName(tr("Naming"));
  types_.setAccessibleName(tr("Files"));
  for (QComboBox* box : {&naming_, &types_}) box->view()->setAccessibleName(box->accessibleName());
  line->addStretch();
  line->addWidget(&everything_);
  return line;
}

QLayout* ImportBar::WorkLine() {
  auto* line = new QHBoxLayout;
  bar_.setRange(0, kSteps);
  bar_.setTextVisible(false);
  bar_.setAccessibleName(tr("Progress"));
  message_.setObjectName("message");
  message_.setTextFormat(Qt::PlainText);
  message_.setWordWrap(true);
  import_.setDefault(true);
  import_.setMinimumHeight(import_.sizeHint().height() * 5 / 4);
  line->addWidget(&bar_, 1);
  line->addWidget(&message_, 1);
  for (QPushButton* button : {&keep_, &delete_, &cancel_, &import_}) line->addWidget(button);
  return line;
}

void ImportBar::TakeTarget(const QString& folder) {
  folder_.setText(Home(folder));
  folder_.setAccessibleName(tr("Folder: %1").arg(folder));
  link_.SetTarget({folder, naming_.currentData().toString(), types_.currentData().toString(), everything_.isChecked()});
}

void ImportBar::Show(const CameraState& state, const Choice& choice) {
  choice_ = choice;
  const bool imports = state.phase == Phase::kImporting || state.phase == Phase::kCutOff;
  const bool works = imports || state.phase == Phase::kDeleting;
  const bool asks = state.phase == Phase::kAsking;
  const bool idle = !works && !asks;
  for (QWidget* widget : std::initializer_list<QWidget*>{&folder_, &naming_, &types_, &everything_}) {
    widget->setEnabled(idle);
  }
  everything_.setVisible(state.others > 0);
  everything_.setText(state.target.everything
                          ? tr("Import %n other (file|files), such as videos, too", nullptr, state.others)
                          : tr("%n other (file is|files are) not shown. Import (it|them) too", nullptr, state.others));
  bar_.setVisible(works);
  cancel_.setVisible(imports);
  delete_.setVisible(asks);
  keep_.setVisible(asks);
  import_.setVisible(idle);
  message_.setText(Message(state));
  import_.setText(ImportText(state, choice));
  const bool isNew = state.offer["new_pictures"].toInt() + state.offer["new_others"].toInt() > 0;
  import_.setEnabled((choice.isAny ? !choice.pictures.isEmpty() : isNew) && state.listed &&
                     !state.offer.contains("error"));
  const double total = state.progress["total"].toDouble();
  bar_.setMaximum(total > 0 ? kSteps : 0);  // 0 is a bar that only moves
  if (total > 0) bar_.setValue(static_cast<int>(state.progress["done"].toDouble() * kSteps / total));
}

}  // namespace desktop

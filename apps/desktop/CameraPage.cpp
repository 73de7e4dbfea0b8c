// The page of one camera.
#include "apps/desktop/CameraPage.h"

#include <QVBoxLayout>

namespace desktop {
namespace {

QString Title(const CameraState& state) {
  // Two cameras of one kind often have one name.
  const QString name = state.name.contains(state.serial) ? state.name : (state.name + ' ' + state.serial).trimmed();
  return state.battery.isEmpty() ? name : CameraPage::tr("%1, battery %2").arg(name, state.battery);
}

}  // namespace

CameraPage::CameraPage(StartWorker start, const QString& serial) : link_(std::move(start), serial) {
  empty_.setAlignment(Qt::AlignCenter);
  empty_.setFocusPolicy(Qt::StrongFocus);  // its place is taken by the pictures, and so is the keyboard
  for (QWidget* widget : std::initializer_list<QWidget*>{&empty_, &grid_, &preview_}) stack_.addWidget(widget);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(&banner_);
  layout->addWidget(&stack_, 1);
  layout->addWidget(&bar_);

  link_.onChange = [this] { Refresh(); };
  link_.onPreview = [this](int picture, const QImage& image, const QString& none) {
    if (picture != open_) return;
    const QImage shown = none.isEmpty() ? image : link_.Model().Thumbnail(picture);
    preview_.Show(shown, link_.Model().Description(picture), none);
  };
  banner_.onRetry = [this] { link_.Retry(); };
  grid_.onWanted = [this](const QList<int>& pictures) { link_.Ask("thumbs", pictures); };
  grid_.onOpen = [this](int picture) { Open(picture); };
  connect(grid_.selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { Refresh(); });
  connect(&link_.Model(), &QAbstractItemModel::modelReset, this, [this] { ClosePreview(); });
  preview_.onStep = [this](int by) {
    const int picture = link_.Model().Beside(open_, by);
    if (picture == open_) return;
    grid_.setCurrentIndex(link_.Model().IndexOf(picture));
    Open(picture);
  };
  preview_.onClose = [this] { ClosePreview(); };
  Refresh();
}

void CameraPage::Refresh() {
  const CameraState& state = link_.State();
  const QList<int> selected = grid_.Chosen();
  Choice choice{!selected.isEmpty(), {}};
  for (int picture : selected) {
    const Picture& one = link_.Model().At(picture);
    if ((one.kinds & state.target.Meant()) == 0) continue;
    choice.pictures.append(picture);
    choice.bytes += one.bytes;
  }
  banner_.Show(state.notice);
  bar_.Show(state, choice);
  setWindowTitle(Title(state));
  // When nobody reads any more, the banner says why.
  empty_.setText(state.listed            ? tr("There are no pictures on this camera.")
                 : state.notice.canRetry ? QString()
                                         : tr("Reading the list of pictures\u2026"));
  if (link_.Model().Count() == 0) {
    stack_.setCurrentWidget(&empty_);
  } else if (open_ < 0) {
    stack_.setCurrentWidget(&grid_);
  }
  if (link_.IsDone()) onDone();
}

void CameraPage::TakeKeyboard() {
  stack_.currentWidget()->setFocus();
}

void CameraPage::Open(int picture) {
  open_ = picture;
  preview_.Show(link_.Model().Thumbnail(picture), link_.Model().Description(picture));
  stack_.setCurrentWidget(&preview_);
  preview_.setFocus();
  link_.Ask("preview", {picture});
}

void CameraPage::ClosePreview() {
  if (open_ < 0) return;
  open_ = -1;
  link_.Ask("preview", {});
  stack_.setCurrentWidget(&grid_);
  grid_.setFocus();
}

}  // namespace desktop

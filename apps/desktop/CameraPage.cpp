// The page of one camera.
#include "apps/desktop/CameraPage.h"

#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "apps/desktop/Banner.h"
#include "apps/desktop/Grid.h"
#include "apps/desktop/ImportBar.h"
#include "apps/desktop/Preview.h"

namespace desktop {

CameraPage::CameraPage(std::unique_ptr<CameraLink> link, const Target& target, QWidget* parent)
    : QWidget(parent),
      link_(std::move(link)),
      banner_(new Banner),
      stack_(new QStackedWidget),
      empty_(new QLabel),
      grid_(new Grid(link_->Model())),
      preview_(new Preview),
      bar_(new ImportBar(target)) {
  empty_->setAlignment(Qt::AlignCenter);
  for (QWidget* widget : std::initializer_list<QWidget*>{empty_, grid_, preview_}) stack_->addWidget(widget);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(banner_);
  layout->addWidget(stack_, 1);
  layout->addWidget(bar_);

  link_->onChange = [this] { Refresh(); };
  link_->onPreview = [this](int row, const QImage& image, const QString& none) {
    if (row != open_) return;
    none.isEmpty() ? preview_->Show(image, link_->Model().index(row).data(Qt::ToolTipRole).toString())
                   : preview_->Explain(none);
  };
  banner_->onRetry = [this] { link_->Retry(); };
  grid_->onWanted = [this](const QList<int>& rows) { link_->Want(rows); };
  grid_->onOpen = [this](int row) { Open(row); };
  connect(grid_->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { Refresh(); });
  connect(&link_->Model(), &QAbstractItemModel::modelReset, this, [this] { ClosePreview(); });
  preview_->onStep = [this](int by) { Step(by); };
  preview_->onClose = [this] { ClosePreview(); };
  bar_->onImport = [this] { link_->Import(grid_->Chosen()); };
  bar_->onCancel = [this] { link_->Cancel(); };
  bar_->onDelete = [this] { link_->Delete(); };
  bar_->onKeep = [this] { link_->Keep(); };
  bar_->onTarget = [this](const Target& changed) {
    link_->SetTarget(changed);
    onTarget(changed);
  };
  Refresh();
}

CameraPage::~CameraPage() {
  link_->onChange = [] {};
  link_->onPreview = [](int, const QImage&, const QString&) {};
  delete grid_;  // before the model that it shows
}

QString CameraPage::Title() const {
  const CameraState& state = link_->State();
  // Two cameras of one kind often have one name.
  const QString name = state.name.contains(state.serial) ? state.name : (state.name + ' ' + state.serial).trimmed();
  return state.battery.isEmpty() ? name : tr("%1, battery %2").arg(name, state.battery);
}

void CameraPage::Refresh() {
  const CameraState& state = link_->State();
  Choice choice;
  for (int row : grid_->Chosen()) {
    ++choice.pictures;
    choice.bytes += link_->Model().At(row).bytes;
  }
  banner_->Show(state.notice);
  bar_->Show(state, choice);
  const bool none = link_->Model().rowCount() == 0;
  // When nobody reads any more, the banner says why.
  empty_->setText(state.listed            ? tr("There are no pictures on this camera.")
                  : state.notice.canRetry ? QString()
                                          : tr("Reading the list of pictures\u2026"));
  if (none || open_ < 0) stack_->setCurrentWidget(none ? static_cast<QWidget*>(empty_) : grid_);
  if (const QString title = Title(); title != title_) {
    title_ = title;
    onTitle();
  }
  if (!link_->IsAttached() && !link_->MustStay()) onDone();
}

void CameraPage::Open(int row) {
  open_ = row;
  const QModelIndex index = link_->Model().index(row);
  preview_->Show(link_->Model().Thumbnail(row), index.data(Qt::ToolTipRole).toString());
  stack_->setCurrentWidget(preview_);
  preview_->setFocus();
  link_->WantPreview(row);
}

void CameraPage::Step(int by) {
  const int row = open_ + by;
  if (row < 0 || row >= link_->Model().rowCount()) return;
  grid_->setCurrentIndex(grid_->IndexOf(row));
  Open(row);
}

void CameraPage::ClosePreview() {
  if (open_ < 0) return;
  open_ = -1;
  link_->WantNoPreview();
  stack_->setCurrentWidget(grid_);
  grid_->setFocus();
}

}  // namespace desktop

// The window with a tab for each camera.
#include "apps/desktop/MainWindow.h"

#include <QJsonArray>
#include <QLabel>
#include <QStackedWidget>
#include <QTabWidget>
#include <QVBoxLayout>

#include "apps/desktop/Banner.h"
#include "apps/desktop/CameraPage.h"

namespace desktop {

MainWindow::MainWindow(MakeWorker makeWorker)
    : makeWorker_(std::move(makeWorker)),
      target_(RememberedTarget()),
      banner_(new Banner),
      stack_(new QStackedWidget),
      welcome_(new QLabel),
      tabs_(new QTabWidget) {
  setWindowTitle(tr("Kelva"));
  resize(1000, 720);
  welcome_->setAlignment(Qt::AlignCenter);
  welcome_->setText(tr("Plug a camera in to see its pictures."));
  tabs_->setDocumentMode(true);
  tabs_->setAccessibleName(tr("Cameras"));
  stack_->addWidget(welcome_);
  stack_->addWidget(tabs_);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(banner_);
  layout->addWidget(stack_, 1);
  banner_->onRetry = [this] { Watch(); };
}

MainWindow::~MainWindow() {
  for (CameraPage* page : Pages()) page->Link().BeginClose();
}

void MainWindow::Watch() {
  banner_->Show({});
  ready_ = false;
  watcher_ = makeWorker_({"watch"});
  watcher_->onEvent = [this](const QJsonObject& event) { Hear(event); };
  watcher_->onDeath = [this] { WatcherEnded(); };
  watcher_->Start();
}

void MainWindow::Raise() {
  if (isMinimized()) showNormal();
  show();
  raise();
  activateWindow();
}

void MainWindow::Hear(const QJsonObject& event) {
  const QString kind = event["event"].toString();
  if (kind == "attached") Attached(event);
  if (kind == "lost") Lost(event["serial"].toString());
  if (kind == "trouble") HearTrouble(event);
  if (kind == "ready") ready_ = true;
}

void MainWindow::HearTrouble(const QJsonObject& event) {
  QStringList sentences;
  Notice notice;
  for (const auto& value : event["findings"].toArray()) {
    const QJsonObject finding = value.toObject();
    sentences.append((finding["sentence"].toString() + ' ' + finding["advice"].toString()).trimmed());
    if (notice.command.isEmpty()) notice.command = finding["command"].toString();
  }
  notice.sentence = sentences.join('\n');
  banner_->Show(notice);
}

// A camera that comes while the window is open takes its user's eye; those of the start are shown in turn.
void MainWindow::Attached(const QJsonObject& event) {
  const QString serial = event["serial"].toString();
  CameraPage* page = PageOf(serial);
  if (page == nullptr) page = AddPage(serial);
  page->Link().Attach();
  if (!ready_) return;
  tabs_->setCurrentWidget(page);
  Raise();
}

void MainWindow::Lost(const QString& serial) {
  CameraPage* page = PageOf(serial);
  if (page == nullptr) return;
  page->Link().Lose();
  if (!page->Link().MustStay()) RemovePage(page);
}

CameraPage* MainWindow::AddPage(const QString& serial) {
  auto* page = new CameraPage(std::make_unique<CameraLink>(makeWorker_, serial), target_);
  tabs_->addTab(page, page->Title());
  page->onTitle = [this, page] { tabs_->setTabText(tabs_->indexOf(page), page->Title()); };
  page->onDone = [this, page] { RemovePage(page); };
  page->onTarget = [this](const Target& target) {
    target_ = target;
    Remember(target);
  };
  ShowPlace();
  return page;
}

void MainWindow::RemovePage(CameraPage* page) {
  page->onDone = [] {};
  tabs_->removeTab(tabs_->indexOf(page));
  page->deleteLater();
  ShowPlace();
}

void MainWindow::ShowPlace() {
  stack_->setCurrentIndex(tabs_->count() == 0 ? 0 : 1);
}

QList<CameraPage*> MainWindow::Pages() const {
  QList<CameraPage*> pages;
  for (int tab = 0; tab < tabs_->count(); ++tab) pages.append(static_cast<CameraPage*>(tabs_->widget(tab)));
  return pages;
}

CameraPage* MainWindow::PageOf(const QString& serial) const {
  for (CameraPage* page : Pages()) {
    if (page->Link().State().serial == serial) return page;
  }
  return nullptr;
}

void MainWindow::WatcherEnded() {
  banner_->Show({tr("The program that watches for cameras has stopped."), {}, true});
}

}  // namespace desktop

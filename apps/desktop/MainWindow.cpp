// The window with a tab for each camera.
#include "apps/desktop/MainWindow.h"

#include <QJsonArray>
#include <QVBoxLayout>

namespace desktop {

MainWindow::MainWindow(StartWorker start) : start_(std::move(start)) {
  setWindowTitle(tr("Kelva"));
  resize(1000, 720);
  welcome_.setAlignment(Qt::AlignCenter);
  tabs_.setDocumentMode(true);
  tabs_.setAccessibleName(tr("Cameras"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(&banner_);
  layout->addWidget(&welcome_, 1);
  layout->addWidget(&tabs_, 1);
  banner_.onRetry = [this] { Watch(); };
  ShowPlace();
}

void MainWindow::Watch() {
  banner_.Show({});
  ready_ = false;
  watcher_ = start_({"watch"}, {[this](const QJsonObject& event) { Hear(event); },
                                [this](int) {
                                  banner_.Show({tr("The program that watches for cameras has stopped."), {}, true});
                                }});
}

void MainWindow::Raise() {
  if (isMinimized()) showNormal();
  show();
  raise();
  activateWindow();
}

void MainWindow::Hear(const QJsonObject& event) {
  const QString kind = event["event"].toString();
  const QString serial = event["serial"].toString();
  if (kind == "attached") Attached(serial);
  if (kind == "lost" && pages_.contains(serial)) pages_[serial]->Link().Lose();
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
  banner_.Show(notice);
}

// A camera that comes while the window is open takes its user's eye; those of the start are shown in turn.
void MainWindow::Attached(const QString& serial) {
  if (!pages_.contains(serial)) AddPage(serial);
  pages_[serial]->Link().Attach();
  if (!ready_) return;
  tabs_.setCurrentWidget(pages_[serial]);
  Raise();
}

void MainWindow::AddPage(const QString& serial) {
  auto* page = new CameraPage(start_, serial);
  pages_[serial] = page;
  tabs_.addTab(page, page->windowTitle());
  connect(page, &QWidget::windowTitleChanged, this,
          [this, page](const QString& title) { tabs_.setTabText(tabs_.indexOf(page), title); });
  page->onDone = [this, serial] { RemovePage(serial); };
  ShowPlace();
}

void MainWindow::RemovePage(const QString& serial) {
  CameraPage* page = pages_.take(serial);
  page->onDone = [] {};
  tabs_.removeTab(tabs_.indexOf(page));
  page->deleteLater();
  ShowPlace();
}

void MainWindow::ShowPlace() {
  welcome_.setVisible(pages_.isEmpty());
  tabs_.setVisible(!pages_.isEmpty());
}

}  // namespace desktop

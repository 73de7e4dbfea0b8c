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
  watcher_ = start_({"watch"}, {[this](const QJsonObject& event) { Hear(event); },
                                [this](ExitCode) {
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
  if (kind == "attached") Attached(serial, event["present"].toBool());
  if (kind == "lost" && pages_.contains(serial)) pages_[serial]->Link().Lose();
  if (kind == "trouble") HearTrouble(event);
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
void MainWindow::Attached(const QString& serial, bool present) {
  CameraPage*& page = pages_[serial];
  if (page == nullptr) {
    page = new CameraPage(start_, serial);
    tabs_.addTab(page, page->windowTitle());
    connect(page, &QWidget::windowTitleChanged, this,
            [this, page](const QString& title) { tabs_.setTabText(tabs_.indexOf(page), title); });
    page->onDone = [this, serial] { RemovePage(serial); };
    ShowPlace();
  }
  page->Link().Attach();
  if (!present) {
    tabs_.setCurrentWidget(page);
    Raise();
  }
  if (tabs_.currentWidget() == page) page->TakeKeyboard();
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

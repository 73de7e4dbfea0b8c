// A sentence above the pictures, with what mends it.
#include "apps/desktop/Banner.h"

#include <QAccessible>
#include <QClipboard>
#include <QEvent>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>

namespace desktop {

Banner::Banner(QWidget* parent)
    : QFrame(parent),
      sentence_(new QLabel),
      command_(new QLabel),
      copy_(new QPushButton(tr("&Copy command"))),
      retry_(new QPushButton(tr("&Try again"))) {
  setAutoFillBackground(true);
  sentence_->setWordWrap(true);
  sentence_->setTextFormat(Qt::PlainText);
  command_->setTextFormat(Qt::PlainText);
  command_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  command_->setWordWrap(true);
  command_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  auto* layout = new QGridLayout(this);
  layout->setContentsMargins(14, 10, 14, 10);
  layout->addWidget(sentence_, 0, 0);
  layout->addWidget(retry_, 0, 1);
  layout->addWidget(command_, 1, 0);
  layout->addWidget(copy_, 1, 1);
  layout->setColumnStretch(0, 1);
  connect(copy_, &QPushButton::clicked, this, [this] { QGuiApplication::clipboard()->setText(shown_.command); });
  connect(retry_, &QPushButton::clicked, this, [this] { onRetry(); });
  TakeColours();
  hide();
}

void Banner::Show(const Notice& notice) {
  if (notice == shown_) return;
  shown_ = notice;
  sentence_->setText(notice.sentence);
  sentence_->setAccessibleName(notice.sentence);
  command_->setText(notice.command);
  command_->setAccessibleName(tr("Command that mends it: %1").arg(notice.command));
  command_->setVisible(!notice.command.isEmpty());
  copy_->setVisible(!notice.command.isEmpty());
  retry_->setVisible(notice.canRetry);
  setVisible(!notice.sentence.isEmpty());
  QAccessibleEvent event(sentence_, QAccessible::Alert);
  if (isVisible()) QAccessible::updateAccessibility(&event);
}

void Banner::changeEvent(QEvent* event) {
  QFrame::changeEvent(event);
  if (event->type() == QEvent::ApplicationPaletteChange) TakeColours();
}

// Those of a tool tip, which stands out on every desktop and is readable there.
void Banner::TakeColours() {
  const QPalette all = QGuiApplication::palette();
  QPalette own = all;
  own.setColor(QPalette::Window, all.color(QPalette::ToolTipBase));
  own.setColor(QPalette::WindowText, all.color(QPalette::ToolTipText));
  setPalette(own);
}

}  // namespace desktop

// A sentence above the pictures, with what mends it.
#include "apps/desktop/Banner.h"

#include <QAccessible>
#include <QClipboard>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGuiApplication>

namespace desktop {

Banner::Banner() {
  // The colours of a tool tip stand out on every desktop and are readable there.
  setBackgroundRole(QPalette::ToolTipBase);
  setAutoFillBackground(true);
  for (QLabel* label : {&sentence_, &command_}) {
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
  }
  command_.setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  command_.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  auto* layout = new QGridLayout(this);
  layout->setContentsMargins(14, 10, 14, 10);
  layout->addWidget(&sentence_, 0, 0);
  layout->addWidget(&retry_, 0, 1);
  layout->addWidget(&command_, 1, 0);
  layout->addWidget(&copy_, 1, 1);
  layout->setColumnStretch(0, 1);
  connect(&copy_, &QPushButton::clicked, this, [this] { QGuiApplication::clipboard()->setText(shown_.command); });
  connect(&retry_, &QPushButton::clicked, this, [this] { onRetry(); });
  hide();
}

void Banner::Show(const Notice& notice) {
  if (notice == shown_) return;
  shown_ = notice;
  sentence_.setText(notice.sentence);
  command_.setText(notice.command);
  command_.setAccessibleName(tr("Command that mends it: %1").arg(notice.command));
  command_.setVisible(!notice.command.isEmpty());
  copy_.setVisible(!notice.command.isEmpty());
  retry_.setVisible(notice.canRetry);
  setVisible(!notice.sentence.isEmpty());
  QAccessibleEvent event(&sentence_, QAccessible::Alert);
  if (isVisible()) QAccessible::updateAccessibility(&event);
}

}  // namespace desktop

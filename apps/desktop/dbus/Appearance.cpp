// Light or dark, as the portal of the user's desktop says.
#include "apps/desktop/Session.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QPalette>
#include <QTimer>

namespace desktop {
namespace {

constexpr char kPortal[] = "org.freedesktop.portal.Desktop";
constexpr char kPortalPath[] = "/org/freedesktop/portal/desktop";
constexpr char kSettings[] = "org.freedesktop.portal.Settings";
constexpr char kNamespace[] = "org.freedesktop.appearance";
constexpr char kKey[] = "color-scheme";
constexpr unsigned kPrefersDark = 1;

QPalette DarkPalette() {
  QPalette dark(QColor(0x2b, 0x2d, 0x30));  // Qt derives the shades of frames and buttons from the one of a button
  dark.setColor(QPalette::Base, QColor(0x1f, 0x20, 0x23));
  dark.setColor(QPalette::Highlight, QColor(0x3f, 0x8f, 0xb5));
  dark.setColor(QPalette::HighlightedText, Qt::white);
  dark.setColor(QPalette::ToolTipBase, QColor(0x4a, 0x42, 0x2a));
  dark.setColor(QPalette::ToolTipText, QColor(0xf4, 0xf1, 0xea));
  return dark;
}

// A palette that is dark already is the desktop's own.
void Take(unsigned scheme) {
  static const QPalette own = QApplication::palette();
  const bool isDark = own.color(QPalette::Window).lightness() < own.color(QPalette::WindowText).lightness();
  QApplication::setPalette(scheme == kPrefersDark && !isDark ? DarkPalette() : own);
}

void Ask() {
  QDBusMessage question = QDBusMessage::createMethodCall(kPortal, kPortalPath, kSettings, "Read");
  question << kNamespace << kKey;
  auto* answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), qApp);
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, qApp, [answer] {
    QVariant value = answer->reply().arguments().value(0);
    // Read wraps its answer twice.
    while (value.userType() == qMetaTypeId<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
    if (!answer->isError()) Take(value.toUInt());
    answer->deleteLater();
  });
}

}  // namespace

void FollowAppearance() {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  // A change is a reason to ask again; what the signal carries is not read.
  auto* changed = new QTimer(qApp);
  changed->setSingleShot(true);
  QObject::connect(changed, &QTimer::timeout, qApp, Ask);
  bus.connect(kPortal, kPortalPath, kSettings, "SettingChanged", changed, SLOT(start()));
  Ask();
}

}  // namespace desktop

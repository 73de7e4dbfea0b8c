// One window for each session: the name com.kelva.Desktop on the session bus, with the interface by which desktops start it.
#include "apps/desktop/Session.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>

namespace desktop {
namespace {

constexpr char kName[] = "com.kelva.Desktop";
constexpr char kDoorPath[] = "/com/kelva/Desktop";
constexpr char kInterface[] = "org.freedesktop.Application";
// The first one answers from its event loop, which never waits.
constexpr int kAnswerMs = 1000;

void AskTheOther(QDBusConnection& bus) {
  QDBusMessage call = QDBusMessage::createMethodCall(kName, kDoorPath, kInterface, "Activate");
  call << QVariantMap();
  bus.call(call, QDBus::Block, kAnswerMs);
}

}  // namespace

// Activate, Open and ActivateAction all mean that the window is to be shown.
class SingleInstance::Door : public QDBusVirtualObject {
 public:
  std::function<void()> raise;

  // Who starts an application knows the interface.
  QString introspect(const QString&) const override { return {}; }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    if (message.interface() != kInterface) return false;
    bus.send(message.createReply());
    if (raise) raise();
    return true;
  }
};

SingleInstance::SingleInstance() {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  door_ = std::make_unique<Door>();
  bus.registerVirtualObject(kDoorPath, door_.get());
  if (bus.registerService(kName)) return;
  hasAskedAnother_ = bus.interface()->isServiceRegistered(kName);
  if (hasAskedAnother_) AskTheOther(bus);
}

SingleInstance::~SingleInstance() = default;

void SingleInstance::OnActivate(std::function<void()> raise) {
  if (door_) door_->raise = std::move(raise);
}

}  // namespace desktop

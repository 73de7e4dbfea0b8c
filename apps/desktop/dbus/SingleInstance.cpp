// One window for each session: the name com.kelva.Desktop on the session bus, with the interface by which desktops start it.
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include "apps/desktop/Session.h"

namespace desktop {
namespace {

constexpr char kName[] = "com.kelva.Desktop";
constexpr char kDoorPath[] = "/com/kelva/Desktop";
constexpr char kInterface[] = "org.freedesktop.Application";
// The first one answers from its event loop, which never waits.
constexpr int kAnswerMs = 1000;

// Activate, Open and ActivateAction all mean that the window is to be shown.
class Door : public QDBusVirtualObject {
 public:
  explicit Door(std::function<void()> raise) : raise_(std::move(raise)) {}

  // Who starts an application knows the interface.
  QString introspect(const QString&) const override { return {}; }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    if (message.interface() != kInterface) return false;
    bus.send(message.createReply());
    raise_();
    return true;
  }

 private:
  std::function<void()> raise_;
};

}  // namespace

std::unique_ptr<QObject> OnlyInstance(std::function<void()> raise) {
  auto door = std::make_unique<Door>(std::move(raise));
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return door;
  bus.registerVirtualObject(kDoorPath, door.get());
  if (bus.registerService(kName) || !bus.interface()->isServiceRegistered(kName)) return door;
  QDBusMessage call = QDBusMessage::createMethodCall(kName, kDoorPath, kInterface, "Activate");
  call << QVariantMap();
  bus.call(call, QDBus::Block, kAnswerMs);
  return nullptr;
}

}  // namespace desktop

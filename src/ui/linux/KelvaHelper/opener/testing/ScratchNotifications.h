#ifndef KELVA_UI_LINUX_KELVA_HELPER_OPENER_TESTING_SCRATCH_NOTIFICATIONS_H_
#define KELVA_UI_LINUX_KELVA_HELPER_OPENER_TESTING_SCRATCH_NOTIFICATIONS_H_

#include <string>

#include "src/ui/linux/KelvaHelper/opener/testing/DirectPeer.h"

namespace opener {

/// For tests: a desktop that keeps the last message that it was to show, at the far end of a direct connection.
class ScratchNotifications {
 public:
  enum class Behaviour { kShow, kRefuse, kSilent };

  explicit ScratchNotifications(Behaviour behaviour = Behaviour::kShow) : behaviour_(behaviour) {}

  GDBusConnection* Connection() const { return peer_.Connection(); }
  /// Empty as long as there is none. The answer to it has arrived before.
  const std::string& Message() const { return message_; }

 private:
  static constexpr char kInterface[] =
      "<node><interface name='org.freedesktop.Notifications'><method name='Notify'>"
      "<arg type='s' direction='in'/><arg type='u' direction='in'/><arg type='s' direction='in'/>"
      "<arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='as' direction='in'/>"
      "<arg type='a{sv}' direction='in'/><arg type='i' direction='in'/><arg type='u' direction='out'/></method>"
      "</interface></node>";

  void Answer(GVariant* parameters, GDBusMethodInvocation* invocation) {
    message_ = Printed(parameters);
    switch (behaviour_) {
      case Behaviour::kShow:
        return g_dbus_method_invocation_return_value(invocation, g_variant_new("(u)", 7U));
      case Behaviour::kRefuse:
        return g_dbus_method_invocation_return_dbus_error(invocation, "org.example.Refused", "not today");
      case Behaviour::kSilent:
        return g_object_unref(invocation);
    }
  }

  Behaviour behaviour_;
  std::string message_;
  DirectPeer peer_{kInterface, "/org/freedesktop/Notifications",
                   [this](GDBusConnection*, GVariant* parameters, GDBusMethodInvocation* invocation) {
                     Answer(parameters, invocation);
                   }};
};

}  // namespace opener

#endif  // KELVA_UI_LINUX_KELVA_HELPER_OPENER_TESTING_SCRATCH_NOTIFICATIONS_H_

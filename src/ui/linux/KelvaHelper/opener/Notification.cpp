// Tells the person at the desk what the journal would tell only those who look.

#include "src/ui/linux/KelvaHelper/opener/Notification.h"

#include "src/ui/linux/KelvaHelper/opener/GObjects.h"
#include "src/ui/linux/KelvaHelper/opener/Report.h"

namespace opener {
namespace {

constexpr char kName[] = "org.freedesktop.Notifications";
constexpr char kPath[] = "/org/freedesktop/Notifications";
constexpr gint32 kTimeOfTheDesktop = -1;
// The message is on its way by then, and nobody needs the answer.
constexpr int kDesktopTimeoutMs = 2000;

/// Program, number of a message to replace, icon, headline, text, buttons, hints, how long it stands.
GVariant* Message(const std::string& headline, const std::string& text) {
  // A desktop may read the text as markup.
  char* const escaped = g_markup_escape_text(text.c_str(), -1);
  GVariant* const message = g_variant_new("(susssasa{sv}i)", "Kelva", 0U, "kelva", headline.c_str(), escaped, nullptr,
                                          nullptr, kTimeOfTheDesktop);
  g_free(escaped);
  return message;
}

}  // namespace

std::string Notify(GDBusConnection* bus, const std::string& headline, const std::string& text, int timeoutMs) {
  if (bus == nullptr) return "this session has no message bus";
  // A direct connection has no names.
  const char* const name = g_dbus_connection_get_unique_name(bus) == nullptr ? nullptr : kName;
  Error error;
  GVariant* const reply =
      g_dbus_connection_call_sync(bus, name, kPath, kName, "Notify", Message(headline, text), G_VARIANT_TYPE("(u)"),
                                  G_DBUS_CALL_FLAGS_NONE, timeoutMs, nullptr, error.Receive());
  if (reply == nullptr) return error.Text();
  g_variant_unref(reply);
  return {};
}

void ComplainOnDesktop(GDBusConnection* bus, const std::string& headline, const std::string& sentence) {
  Complain(sentence);
  // A desktop that shows no messages is one more reason for the line above, and none for another.
  static_cast<void>(Notify(bus, headline, sentence, kDesktopTimeoutMs));
}

}  // namespace opener

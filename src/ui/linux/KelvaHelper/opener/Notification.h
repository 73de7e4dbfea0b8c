#ifndef KELVA_UI_LINUX_KELVA_HELPER_OPENER_NOTIFICATION_H_
#define KELVA_UI_LINUX_KELVA_HELPER_OPENER_NOTIFICATION_H_

#include <gio/gio.h>

#include <string>

namespace opener {

/// Shows a message on the user's desktop. `bus` reaches the desktop, as the session's message bus or directly; null where
/// there is none. Waits for the desktop's answer, `timeoutMs` at most. Returns an empty text, or the reason why nobody
/// sees the message.
std::string Notify(GDBusConnection* bus, const std::string& headline, const std::string& text, int timeoutMs);

/// Says a sentence on standard error, and shows it on the desktop where there is one.
void ComplainOnDesktop(GDBusConnection* bus, const std::string& headline, const std::string& sentence);

}  // namespace opener

#endif  // KELVA_UI_LINUX_KELVA_HELPER_OPENER_NOTIFICATION_H_

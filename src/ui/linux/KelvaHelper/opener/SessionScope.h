#ifndef KELVA_UI_LINUX_KELVA_HELPER_OPENER_SESSION_SCOPE_H_
#define KELVA_UI_LINUX_KELVA_HELPER_OPENER_SESSION_SCOPE_H_

#include <gio/gio.h>

#include <string>

namespace opener {

/// True where the user has a service manager that can make scopes; `runtimeDirectory` is XDG_RUNTIME_DIR.
bool HasServiceManager(const std::string& runtimeDirectory);

/// Moves this process into a transient scope of its own, so that what it starts does not belong to the agent's unit and
/// outlives it. `connection` reaches the user's service manager, through a message bus or directly. Waits until the
/// manager has done it, `timeoutMs` at most. Returns an empty text, or the reason why there is no scope.
std::string MoveIntoScope(GDBusConnection* connection, const std::string& desktopId, int timeoutMs);

/// Moves this process into a scope for `desktopId` where there is a manager to ask; `bus` may be null. Without a scope the
/// launch goes on: the unit's own settings keep the application alive then. Says on standard error why there is none.
void EnterScope(GDBusConnection* bus, const std::string& desktopId);

}  // namespace opener

#endif  // KELVA_UI_LINUX_KELVA_HELPER_OPENER_SESSION_SCOPE_H_

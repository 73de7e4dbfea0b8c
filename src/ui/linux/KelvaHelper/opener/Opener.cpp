// The opener from its arguments to its exit code.

#include "src/ui/linux/KelvaHelper/opener/Opener.h"

#include <cstdio>
#include <cstdlib>

#include "src/ui/linux/KelvaHelper/opener/DesktopApplication.h"
#include "src/ui/linux/KelvaHelper/opener/GObjects.h"
#include "src/ui/linux/KelvaHelper/opener/SessionScope.h"

namespace opener {
namespace {

// A manager that is asked while it is busy answers within milliseconds; the person at the desk waits meanwhile.
constexpr int kScopeTimeoutMs = 2000;

constexpr char kHelp[] =
    "Usage: kelva-open DESKTOP_ID\n"
    "\n"
    "Starts the desktop application whose entry is DESKTOP_ID.desktop, and ends.\n"
    "\n"
    "  --help     print this text\n"
    "  --version  print the version\n"
    "\n"
    "Exit codes: 0 started; 1 it could not be started; 2 wrong arguments; 3 not installed.\n";

void WriteLine(std::FILE* stream, const std::string& sentence) {
  const std::string line = "kelva-open: " + sentence + "\n";
  std::fwrite(line.data(), 1, line.size(), stream);
  std::fflush(stream);
}

int Fail(ExitCode code, const std::string& sentence) {
  WriteLine(stderr, sentence);
  return code;
}

std::string RuntimeDirectory() {
  const char* value = std::getenv("XDG_RUNTIME_DIR");
  return value == nullptr ? std::string() : std::string(value);
}

/// Leaves the agent's unit where there is a manager to ask. Without a scope the launch goes on: the unit's own settings
/// keep the application alive then.
void LeaveTheAgentsUnit(GDBusConnection* bus, const std::string& desktopId) {
  if (bus == nullptr || !HasServiceManager(RuntimeDirectory())) return;
  const std::string reason = MoveIntoScope(bus, desktopId, kScopeTimeoutMs);
  if (!reason.empty()) WriteLine(stderr, desktopId + " gets no scope of its own (" + reason + ") and starts without.");
}

int Launch(DesktopApplication& application, const std::string& desktopId) {
  const Object<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
  LeaveTheAgentsUnit(bus.get(), desktopId);
  const std::string reason = application.Launch();
  if (!reason.empty()) return Fail(kLaunchFailed, desktopId + " could not be started: " + reason);
  // An application that is started by a message must not lose it with this process.
  if (bus) g_dbus_connection_flush_sync(bus.get(), nullptr, nullptr);
  WriteLine(stdout, "Started " + application.Name() + " (" + desktopId + ") for the camera that was attached.");
  return kLaunched;
}

}  // namespace

int Open(const std::vector<std::string>& arguments) {
  if (arguments.size() != 1 || arguments[0].empty()) {
    return Fail(kWrongArguments, "This program takes one argument, the desktop id of the application to start.");
  }
  if (arguments[0] == "--help" || arguments[0] == "--version") {
    std::fputs(arguments[0] == "--help" ? kHelp : "kelva-open " KELVA_VERSION "\n", stdout);
    return kLaunched;
  }
  if (arguments[0].front() == '-') {
    return Fail(kWrongArguments, "\"" + arguments[0] + "\" is no desktop id; --help says how this program is used.");
  }
  DesktopApplication application(arguments[0]);
  if (application) return Launch(application, arguments[0]);
  return Fail(kNotInstalled, "A camera was attached, but the application " + arguments[0] +
                                 " is not installed: no folder of desktop entries has a usable " + arguments[0] +
                                 ".desktop. Install it to have it started.");
}

}  // namespace opener

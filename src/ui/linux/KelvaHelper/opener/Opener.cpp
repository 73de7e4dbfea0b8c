// The opener from its arguments to its exit code.

#include "src/ui/linux/KelvaHelper/opener/Opener.h"

#include <limits.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "src/ui/linux/KelvaHelper/opener/Arguments.h"
#include "src/ui/linux/KelvaHelper/opener/CameraFolders.h"
#include "src/ui/linux/KelvaHelper/opener/DesktopApplication.h"
#include "src/ui/linux/KelvaHelper/opener/ExitCode.h"
#include "src/ui/linux/KelvaHelper/opener/FolderViewer.h"
#include "src/ui/linux/KelvaHelper/opener/GObjects.h"
#include "src/ui/linux/KelvaHelper/opener/Notification.h"
#include "src/ui/linux/KelvaHelper/opener/Report.h"
#include "src/ui/linux/KelvaHelper/opener/SessionScope.h"

namespace opener {
namespace {

int Fail(ExitCode code, const std::string& sentence) {
  Complain(sentence);
  return code;
}

int Print(const std::string& text) {
  std::fputs(text.c_str(), stdout);
  return kLaunched;
}

/// The session's message bus, or null.
Object<GDBusConnection> SessionBus() {
  return Object<GDBusConnection>(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
}

/// A program that is started by a message must not lose it with this process.
int Flush(GDBusConnection* bus, int code) {
  if (bus != nullptr) g_dbus_connection_flush_sync(bus, nullptr, nullptr);
  return code;
}

int Launch(DesktopApplication& application, const std::string& desktopId) {
  const Object<GDBusConnection> bus = SessionBus();
  EnterScope(bus.get(), desktopId);
  const std::string reason = application.Launch();
  if (!reason.empty()) return Fail(kLaunchFailed, desktopId + " could not be started: " + reason);
  Flush(bus.get(), kLaunched);
  Say("Started " + application.Name() + " (" + desktopId + ") for the camera that was attached.");
  return kLaunched;
}

/// Whether cameras may become folders. Who sets something unknown wants something else than what happens unasked.
bool MayMount() {
  const char* const value = std::getenv("KELVA_ON_PLUG");
  const std::string setting = value == nullptr ? "mount" : value;
  if (setting != "mount" && setting != "desktop-only") {
    Complain("KELVA_ON_PLUG is \"" + setting + "\", and means desktop-only; set it to mount or desktop-only.");
  }
  return setting == "mount";
}

std::string NotInstalled(const std::string& desktopId) {
  return "A camera was attached, but the application " + desktopId +
         " is not installed: no folder of desktop entries has a usable " + desktopId +
         ".desktop. Install it to have it started";
}

MountProgram MountProgramOfThisInstallation() {
  char path[PATH_MAX];
  const ssize_t length = ::readlink("/proc/self/exe", path, sizeof path);
  return MountProgram::Beside(length > 0 ? std::string(path, static_cast<std::size_t>(length)) : std::string());
}

int ShowWithoutApplication(const Arguments& arguments) {
  if (!MayMount()) return Fail(kNotInstalled, NotInstalled(arguments.desktopId) + ".");
  const Object<GDBusConnection> bus = SessionBus();
  MountProgram program = MountProgramOfThisInstallation();
  if (program.IsInstalled()) {
    CameraFolders folders(std::move(program), bus.get(), {kCameraCard, kFolder});
    return Flush(bus.get(), folders.Show(arguments.virtualBus));
  }
  ComplainOnDesktop(bus.get(), "A camera was plugged in",
                    NotInstalled(arguments.desktopId) + ", or kelva-mount to see the pictures in a folder.");
  return kNotInstalled;
}

int Open(const Arguments& arguments) {
  DesktopApplication application(arguments.desktopId);
  return application ? Launch(application, arguments.desktopId) : ShowWithoutApplication(arguments);
}

}  // namespace

int Open(const std::vector<std::string>& words) {
  const Arguments arguments = ParseArguments(words);
  switch (arguments.request) {
    case Arguments::Request::kHelp:
      return Print(HelpText());
    case Arguments::Request::kVersion:
      return Print(VersionText());
    case Arguments::Request::kWrong:
      return Fail(kWrongArguments, arguments.complaint);
    case Arguments::Request::kOpen:
      break;
  }
  return Open(arguments);
}

}  // namespace opener

#ifndef KELVA_UI_LINUX_KELVA_HELPER_DESKTOP_LAUNCHER_H_
#define KELVA_UI_LINUX_KELVA_HELPER_DESKTOP_LAUNCHER_H_

#include <string>

namespace helper {

/// Where the opener is, for an agent whose own program is `program`: beside it (a build tree), otherwise at its place
/// in an installation, whether or not it is there.
std::string OpenerBeside(const std::string& program);

/// The path of this process's program; empty where the system does not tell.
std::string OwnProgram();

/// Sets the program that LaunchDesktopApplication runs, and the virtual bus that has the cameras (empty: this machine).
/// Call it once, at the start: an upgrade of the package may later move the agent's own file away.
void UseOpener(std::string path, std::string virtualBus);

/// Runs the opener, the short-lived program that finds and launches the desktop application, and returns at its execve.
/// The opener reports the outcome of the launch; an opener that cannot be run is one line on standard error.
void LaunchDesktopApplication();

}  // namespace helper

#endif  // KELVA_UI_LINUX_KELVA_HELPER_DESKTOP_LAUNCHER_H_

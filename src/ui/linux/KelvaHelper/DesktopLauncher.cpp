// Finds and runs the opener, which launches the application and reports how that went.

#include "src/ui/linux/KelvaHelper/DesktopLauncher.h"

#include <limits.h>
#include <unistd.h>

#include <cstring>
#include <vector>

#include "src/ui/linux/KelvaHelper/Report.h"
#include "src/ui/linux/KelvaHelper/Spawn.h"

namespace helper {
namespace {

/// The path of the opener, and what it is told.
std::vector<std::string>& Opener() {
  static std::vector<std::string> command{""};
  return command;
}

}  // namespace

std::string OpenerBeside(const std::string& program) {
  const std::string folder = program.substr(0, program.find_last_of('/') + 1);
  const std::string beside = folder + "kelva-open";
  return ::access(beside.c_str(), X_OK) == 0 ? beside : folder + KELVA_OPENER_FROM_PROGRAM;
}

std::string OwnProgram() {
  char path[PATH_MAX];
  const ssize_t length = ::readlink("/proc/self/exe", path, sizeof path);
  return length > 0 ? std::string(path, static_cast<std::size_t>(length)) : std::string();
}

void UseOpener(std::string path, std::string virtualBus) {
  Opener() = {std::move(path), KELVA_DESKTOP_ID};
  if (!virtualBus.empty()) Opener().insert(Opener().end(), {"--virtual", std::move(virtualBus)});
}

void LaunchDesktopApplication() {
  const int error = Spawn(Opener());
  if (error == 0) return;
  Complain("A camera was attached, but " + Opener().front() + " cannot be run (" + std::strerror(error) +
           "), so " KELVA_DESKTOP_ID " was not started; install this program again.");
}

}  // namespace helper

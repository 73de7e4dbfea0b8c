// The agent from its arguments to its exit code.

#include "src/ui/linux/KelvaHelper/Agent.h"

#include <CoreFoundation/CoreFoundation.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>

#include "darwin/registry/Registry.h"
#include "src/ui/linux/KelvaHelper/Arguments.h"
#include "src/ui/linux/KelvaHelper/AttachListener.h"
#include "src/ui/linux/KelvaHelper/CameraSource.h"
#include "src/ui/linux/KelvaHelper/DesktopLauncher.h"
#include "src/ui/linux/KelvaHelper/Report.h"
#include "src/ui/linux/KelvaHelper/SessionLock.h"
#include "src/ui/linux/KelvaHelper/SignalStop.h"
#include "src/ui/linux/KelvaHelper/Spawn.h"

namespace helper {
namespace {

enum ExitCode : int { kDone = 0, kFailed = 1, kWrongArguments = 2 };

int Fail(ExitCode code, const std::string& sentence) {
  Complain(sentence);
  return code;
}

int Print(const std::string& text) {
  std::fputs(text.c_str(), stdout);
  return kDone;
}

/// Watches until a signal comes.
int Watch(const std::string& virtualBus) {
  // A reader of this program's lines that has gone must not end the watch.
  std::signal(SIGPIPE, SIG_IGN);
  const SignalStop stop;
  ForgetChildren();
  UseOpener(OpenerBeside(OwnProgram()), virtualBus);
  UseCamerasOf(virtualBus);
  ListenForCameras();
  Say("Watching; each camera that is attached from now on starts " KELVA_DESKTOP_ID ".");
  CFRunLoopRun();
  return kDone;
}

/// What a failed registration says: the back end's own sentence where it had one, since "failed" helps nobody.
std::string ReasonOf(const std::exception& error) {
  const std::string reason = darwin::Registry::Shared().LastSourceError();
  return reason.empty() ? FirstLine(error.what()) : reason;
}

int WatchOrSayWhyNot(const std::string& virtualBus) {
  try {
    return Watch(virtualBus);
  } catch (const std::exception& error) {
    return Fail(kFailed, "Cameras cannot be watched: " + ReasonOf(error));
  }
}

std::string NameOf(pid_t process) {
  return process > 0 ? " (process " + std::to_string(process) + ")" : std::string();
}

int CannotLock(const std::string& path, int error) {
  return Fail(kFailed, "The lock file " + path + " cannot be used (" + std::strerror(error) +
                           "); set XDG_RUNTIME_DIR to a folder of your own.");
}

int WatchAlone(const std::string& virtualBus) {
  const SessionIdentity session = CurrentSession(virtualBus);
  const std::string path = LockPath(session);
  if (session.runtimeDirectory.empty()) {
    if (const int error = MakeLockFolder(path, session.home); error != 0) return CannotLock(path, error);
  }
  const SessionLock lock(path);
  switch (lock.Result()) {
    case SessionLock::Outcome::kHeld:
      return WatchOrSayWhyNot(virtualBus);
    case SessionLock::Outcome::kHeldByAnother:
      Say("Another copy" + NameOf(lock.Rival()) + " already serves this login session, so this one ends.");
      return kDone;
    case SessionLock::Outcome::kFailed:
      break;
  }
  return CannotLock(path, lock.Error());
}

}  // namespace

int RunAgent(const std::vector<std::string>& words) {
  const Arguments arguments = ParseArguments(words);
  switch (arguments.request) {
    case Arguments::Request::kHelp:
      return Print(HelpText());
    case Arguments::Request::kVersion:
      return Print(VersionText());
    case Arguments::Request::kWrong:
      return Fail(kWrongArguments, arguments.complaint);
    case Arguments::Request::kWatch:
      break;
  }
  return WatchAlone(arguments.virtualBus);
}

}  // namespace helper

// What a plug does when the desktop application is not installed: cameras become folders, and something opens them.

#include "src/ui/linux/KelvaHelper/opener/CameraFolders.h"

#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <thread>

#include "base/FileDescriptor.h"
#include "src/ui/linux/KelvaHelper/opener/ExitCode.h"
#include "src/ui/linux/KelvaHelper/opener/FolderViewer.h"
#include "src/ui/linux/KelvaHelper/opener/Notification.h"
#include "src/ui/linux/KelvaHelper/opener/Report.h"
#include "src/ui/linux/KelvaHelper/opener/SessionScope.h"

namespace opener {
namespace {

/// Waits for the other openers of this user: two that mount at once could both take the same camera. Goes on without
/// where the file cannot be made, and when the other one has not ended in time.
base::FileDescriptor WaitForTurn(std::chrono::milliseconds patience) {
  constexpr std::chrono::milliseconds kEachAttempt(50);
  const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
  const std::string path = std::string(runtime != nullptr ? runtime : g_get_user_runtime_dir()) + "/kelva-open.lock";
  base::FileDescriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  const auto until = std::chrono::steady_clock::now() + patience;
  while (file && ::flock(file.Get(), LOCK_EX | LOCK_NB) != 0 && (errno == EWOULDBLOCK || errno == EINTR)) {
    if (std::chrono::steady_clock::now() >= until) {
      Complain("Another kelva-open has been mounting cameras for " + std::to_string(patience.count() / 1000) +
               " seconds; this one goes on beside it.");
      break;
    }
    std::this_thread::sleep_for(kEachAttempt);
  }
  return file;
}

}  // namespace

int CameraFolders::Show(const std::string& virtualBus) {
  // The processes that serve the folders outlive the agent's unit, and are not the viewer's when somebody ends that.
  EnterScope(bus_, "kelva-mount");
  const base::FileDescriptor turn = WaitForTurn(patience_);
  return Summary(program_.MountAll(virtualBus, [this](const Mounted& camera) {
    if (!camera.before) Open(camera);
  }));
}

void CameraFolders::Open(const Mounted& camera) {
  const auto opens = [&](const char* contentType) { return OpenWith(contentType, camera); };
  if (std::any_of(contentTypes_.begin(), contentTypes_.end(), opens)) {
    ++opened_;
    return;
  }
  ++unopened_;
  ComplainOnDesktop(
      bus_, "A camera was plugged in",
      "Camera " + camera.serial + " is the folder " + camera.path +
          ", and no installed program opens it. Install a program for pictures, such as shotwell or gthumb, "
          "or a file manager.");
}

bool CameraFolders::OpenWith(const char* contentType, const Mounted& camera) {
  const FolderViewer viewer(contentType);
  if (!viewer) return false;
  EnterScopeOnce(viewer.Id());
  const std::string reason = viewer.Open(camera.path);
  if (reason.empty()) {
    Say("Mounted camera " + camera.serial + " on " + camera.path + " and started " + viewer.Name() + " there.");
  } else {
    Complain(viewer.Name() + " could not be started on " + camera.path + ": " + reason);
  }
  return reason.empty();
}

void CameraFolders::EnterScopeOnce(const std::string& id) {
  if (!inScope_) EnterScope(bus_, id);
  inScope_ = true;
}

int CameraFolders::Summary(const std::string& failure) {
  if (!failure.empty() && opened_ == 0) {
    ComplainOnDesktop(bus_, "A camera cannot be shown", "A camera was attached, and could not be mounted: " + failure);
  } else if (!failure.empty()) {
    Complain("A camera was attached, and could not be mounted: " + failure);
  } else if (opened_ == 0 && unopened_ == 0) {
    Say("A camera was attached; those that are there have been folders before, so nothing was opened.");
  }
  if (!failure.empty()) return kLaunchFailed;
  return unopened_ == 0 ? kLaunched : kNotInstalled;
}

}  // namespace opener

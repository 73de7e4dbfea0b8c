#ifndef KELVA_UI_LINUX_KELVA_HELPER_OPENER_CAMERA_FOLDERS_H_
#define KELVA_UI_LINUX_KELVA_HELPER_OPENER_CAMERA_FOLDERS_H_

#include <gio/gio.h>

#include <chrono>
#include <string>
#include <vector>

#include "src/ui/linux/KelvaHelper/opener/MountProgram.h"

namespace opener {

/// Shows cameras without an application of their own: each that is attached becomes a folder, which the user's own
/// program for pictures opens.
class CameraFolders {
 public:
  /// `bus` is the session's message bus, or null; it stays the caller's. `contentTypes` say which of the user's programs
  /// are asked to open a folder: one for the first type that has any.
  /// `patience`: how long this waits for another opener of the same user.
  CameraFolders(MountProgram program, GDBusConnection* bus, std::vector<const char*> contentTypes,
                std::chrono::milliseconds patience = std::chrono::seconds(15))
      : program_(std::move(program)), bus_(bus), contentTypes_(std::move(contentTypes)), patience_(patience) {}

  /// Mounts every camera of `virtualBus` (empty: of this machine) that is not mounted, and opens those that this mounted.
  /// Says what became of them. Returns an exit code of the opener.
  int Show(const std::string& virtualBus);

 private:
  void Open(const Mounted& camera);
  bool OpenWith(const char* contentType, const Mounted& camera);
  void EnterScopeOnce(const std::string& id);
  int Summary(const std::string& failure);

  MountProgram program_;
  GDBusConnection* bus_;
  std::vector<const char*> contentTypes_;
  std::chrono::milliseconds patience_;
  bool inScope_ = false;
  int opened_ = 0;
  int unopened_ = 0;
};

}  // namespace opener

#endif  // KELVA_UI_LINUX_KELVA_HELPER_OPENER_CAMERA_FOLDERS_H_

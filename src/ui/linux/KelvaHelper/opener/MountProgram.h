#ifndef KELVA_UI_LINUX_KELVA_HELPER_OPENER_MOUNT_PROGRAM_H_
#define KELVA_UI_LINUX_KELVA_HELPER_OPENER_MOUNT_PROGRAM_H_

#include <chrono>
#include <functional>
#include <string>

#include "src/ui/linux/KelvaHelper/opener/MountEvent.h"

namespace opener {

/// kelva-mount, which shows cameras as folders.
class MountProgram {
 public:
  /// The one that lies beside the program `opener`, as it does in a build tree and in an installation.
  static MountProgram Beside(const std::string& opener);
  /// `patience`: how long it may be silent before it is ended. It gives up on one camera earlier than that.
  explicit MountProgram(std::string path, std::chrono::milliseconds patience = std::chrono::seconds(30))
      : path_(std::move(path)), patience_(patience) {}

  bool IsInstalled() const;

  /// Has every attached camera mounted that is not, and calls `onMounted` for each, as soon as it is a folder.
  /// `virtualBus` is the socket of the bus that has the cameras; empty: this machine. Returns when the program has ended
  /// and nobody holds its output: an empty text, or why a camera was not mounted. Everything else that it says goes to
  /// standard error.
  std::string MountAll(const std::string& virtualBus, const std::function<void(const Mounted&)>& onMounted) const;

 private:
  std::string path_;
  std::chrono::milliseconds patience_;
};

}  // namespace opener

#endif  // KELVA_UI_LINUX_KELVA_HELPER_OPENER_MOUNT_PROGRAM_H_

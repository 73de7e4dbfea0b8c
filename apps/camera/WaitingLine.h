#ifndef KELVA_APPS_CAMERA_WAITING_LINE_H_
#define KELVA_APPS_CAMERA_WAITING_LINE_H_

#include <cstdint>
#include <optional>
#include <string>

#include "apps/commandline/Context.h"
#include "base/FileDescriptor.h"

namespace apps {

/// Where programs stand in line for one camera. Each place is a lock on a byte of a node or a folder that all of these
/// programs can open: no file is written or left behind, and the system takes away the place of a process that ends.
/// The byte's offset is the time of joining, so whoever has no lock below its own is first.
///
/// Where the place cannot be opened or locked there is no line: nobody is seen to wait, and everybody is first. Belongs
/// to one thread.
class WaitingLine {
 public:
  WaitingLine() = default;
  explicit WaitingLine(const std::optional<LinePlace>& place);

  /// Takes the last place.
  void Join();
  /// Gives the place up.
  void Leave();
  bool IsFirst() const;
  /// Whether another program stands in line.
  bool IsAwaited() const;

  /// Tells those who wait that the camera is held for one long file, or no longer.
  void HoldForLong(bool held);
  /// Whether another program has said so.
  bool IsHeldForLong() const;

 private:
  bool Lock(short type, std::uint64_t offset) const;
  bool AnotherHas(std::uint64_t first, std::uint64_t count) const;

  base::FileDescriptor file_;
  std::uint64_t base_ = 0;              ///< of the bytes that stand for this camera
  std::optional<std::uint64_t> place_;  ///< while in line
  bool long_ = false;
};

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_WAITING_LINE_H_

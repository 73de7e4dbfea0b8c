#ifndef KELVA_TESTS_DOORS_DOOR_H_
#define KELVA_TESTS_DOORS_DOOR_H_

#include <memory>
#include <span>

#include "tests/doors/Table.h"
#include "vcam/device/Options.h"
#include "vcam/faults/Fault.h"

namespace tests::doors {

/// A way for the commands of OsxCamera to a virtual camera. The registry, in which the camera is found, is the process's: at
/// most one camera hangs on one door at a time.
class Door {
 public:
  virtual ~Door() = default;
  virtual Counting counting() const = 0;
  /// Plugs a camera in.
  virtual void Plug(const vcam::Options& options) = 0;
  /// From now on a command that is not answered is given up soon.
  virtual void GrowImpatient() = 0;
  virtual void Arm(const vcam::Fault& fault) = 0;
  /// Takes the camera away, if a fault has not done so already.
  virtual void Unplug(bool hasGone) = 0;
};

/// A door by its name. Which ones there are is decided by the program that the tests are linked into.
struct NamedDoor {
  const char* name;
  std::unique_ptr<Door> (*make)();
};

std::span<const NamedDoor> AllDoors();

}  // namespace tests::doors

#endif  // KELVA_TESTS_DOORS_DOOR_H_

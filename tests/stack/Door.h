#ifndef KELVA_TESTS_STACK_DOOR_H_
#define KELVA_TESTS_STACK_DOOR_H_

#include <string>

#include "vcam/device/Options.h"
#include "vcam/faults/Fault.h"

namespace tests::stack {

/// How the cameras of a test reach the library. Two programs are made of the same tests, one for each door: cameras of
/// this process, and cameras behind a bus. The registry is the process's, so there is one door per program.
class Door {
 public:
  static Door& Get();

  virtual ~Door() = default;
  virtual void Plug(const vcam::Options& options) = 0;
  virtual void Unplug(const std::string& serial) = 0;
  /// The camera went away by a fault of its own.
  virtual void HasUnpluggedItself(const std::string& serial) = 0;
  virtual void Arm(const std::string& serial, const vcam::Fault& fault) = 0;
  /// Takes all faults back.
  virtual void Disarm(const std::string& serial) = 0;
};

}  // namespace tests::stack

#endif  // KELVA_TESTS_STACK_DOOR_H_

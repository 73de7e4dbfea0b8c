#ifndef KELVA_VCAM_CAMERA_VIRTUAL_CAMERA_H_
#define KELVA_VCAM_CAMERA_VIRTUAL_CAMERA_H_

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>

#include "vcam/device/Options.h"
#include "vcam/faults/Fault.h"
#include "wire/Command.h"

namespace vcam {

/// The device side of the whole command set, over a storage folder. Every door calls Execute, so a fault that is armed
/// here works through all of them.
///
/// Threads: all members may be called from any thread; commands run one at a time.
class VirtualCamera {
 public:
  /// Throws std::runtime_error with one sentence when the storage cannot be used.
  explicit VirtualCamera(Options options);
  ~VirtualCamera();
  VirtualCamera(const VirtualCamera&) = delete;
  VirtualCamera& operator=(const VirtualCamera&) = delete;

  /// Runs one command. Never waits: the reply says how long the command takes. Any bytes are safe to pass; the camera
  /// refuses with sense data what it does not understand.
  wire::Reply Execute(const wire::Command& command);

  /// Arms a fault; several may be armed at once.
  void Arm(const Fault& fault);
  /// Disarms all faults.
  void Disarm();

  /// Takes the camera's one session; false while another holder has it.
  bool StartSession();
  void EndSession();

  /// Ends the camera: every later command answers Transport::kGone. Does not wait for a command that is running.
  void Unplug();
  /// Whether the camera was unplugged, by Unplug or by a fault in the middle of a command.
  bool Gone() const;
  /// Waits for the camera to be unplugged, at most this long, and returns whether it is. A door does this for
  /// Transport::kHang.
  bool WaitForUnplug(std::chrono::milliseconds atMost) const;

  const Options& GetOptions() const;
  /// The first 36 bytes of the answer to INQUIRY, for doors that speak SCSI to the end.
  std::array<std::uint8_t, 36> InquiryData() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace vcam

#endif  // KELVA_VCAM_CAMERA_VIRTUAL_CAMERA_H_

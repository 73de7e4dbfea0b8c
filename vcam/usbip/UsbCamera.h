#ifndef KELVA_VCAM_USBIP_USB_CAMERA_H_
#define KELVA_VCAM_USBIP_USB_CAMERA_H_

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "vcam/usbip/BulkOnly.h"
#include "vcam/usbip/ControlPipe.h"
#include "vcam/usbip/Messages.h"
#include "vcam/usbip/ScsiUnit.h"

namespace vcam::usbip {

/// Everything that makes one virtual camera a USB device.
struct CameraModel {
  UsbIdentity identity;
  ScsiUnit::Inquiry inquiry{};
  Execute execute;
  BulkOnly::FaultSource faults{};
};

/// A finished transfer, to be answered.
struct Finished {
  std::uint32_t sequence = 0;
  bool in = false;
  Taken result{};
};

/// The camera as the USB host sees it: transfers go in, finished transfers come out, in the order of each endpoint.
class UsbCamera : private ControlledPipes {
 public:
  explicit UsbCamera(CameraModel model);

  /// Takes a transfer. Throws ProtocolError when the host has too many pending.
  void Submit(usbip::Submit submit, Clock::time_point now);
  /// Takes a transfer back; false when it is not pending.
  bool Unlink(std::uint32_t sequence);
  /// The next finished transfer, or nothing at this time.
  std::optional<Finished> Next(Clock::time_point now);
  /// When Next will have more to give without new input from the host, or when the camera vanishes.
  std::optional<Clock::time_point> WaitsUntil(Clock::time_point now) const { return bulk_.WaitsUntil(now); }
  bool Unplugged(Clock::time_point now) const { return bulk_.Unplugged(now); }

 private:
  struct Pending {
    std::uint32_t sequence;
    std::uint32_t length;
  };

  void Control(const usbip::Submit& submit);
  void Finish(const usbip::Submit& submit, Taken result);

  void ResetTransport() override;
  void ResetAll() override;
  void SetHalt(std::uint8_t address, bool halted) override;
  bool Halted(std::uint8_t address) const override;

  ScsiUnit unit_;
  BulkOnly bulk_;
  ControlPipe control_;
  std::deque<Pending> waiting_{};
  std::deque<Finished> finished_{};
};

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_USB_CAMERA_H_

#ifndef KELVA_VCAM_USBIP_SCSI_UNIT_H_
#define KELVA_VCAM_USBIP_SCSI_UNIT_H_

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "wire/Command.h"

namespace vcam::usbip {

/// Runs a command of the camera's own set, 0xC0 to 0xC6. Called from the thread that serves the cable.
using Execute = std::function<wire::Reply(const wire::Command&)>;

/// Whether an operation code belongs to the camera's own set.
bool IsCameraCommand(std::uint8_t operation);

/// The camera as a SCSI logical unit: what a kernel asks of any unit is answered here, the camera's own commands are
/// passed on. READ CAPACITY and READ(10) show the bytes of the data set that is selected in the camera, in blocks of 512
/// with the last one filled up with zeros; without a selection there is no medium. Everything else is refused with sense
/// data that says why.
class ScsiUnit {
 public:
  using Inquiry = std::array<std::uint8_t, 36>;

  /// `inquiry` is the standard inquiry data, `serial` the unit serial number.
  ScsiUnit(const Inquiry& inquiry, std::string serial, Execute camera)
      : inquiry_(inquiry), serial_(std::move(serial)), camera_(std::move(camera)) {}

  /// Carries a command out. A refusal is kept for the REQUEST SENSE that follows.
  wire::Reply Run(const wire::Command& command);
  /// Forgets the reason of the last refusal, for a command that fails without sense data.
  void DropSense() { sense_ = {}; }

 private:
  enum class Selection : std::uint8_t { kNone, kPlain, kBundle };

  wire::Reply Dispatch(const wire::Command& command);
  wire::Reply OwnCommand(const wire::Command& command);
  wire::Reply TestReady() const;
  wire::Reply TellSense(const wire::Command& command);
  wire::Reply TellInquiry(const wire::Command& command) const;
  wire::Reply TellPage(const wire::Command& command) const;
  wire::Reply TellModes(const wire::Command& command) const;
  wire::Reply TellCapacity(const wire::Command& command);
  wire::Reply ReadBlocks(const wire::Command& command);
  wire::Reply Ask(std::uint8_t operation, std::uint8_t subCode, std::uint32_t offset, std::uint32_t length);

  Inquiry inquiry_;
  std::string serial_;
  Execute camera_;
  wire::Sense sense_{};
  Selection selection_ = Selection::kNone;
};

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_SCSI_UNIT_H_

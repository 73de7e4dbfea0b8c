#ifndef KELVA_VCAM_USBIP_CONTROL_PIPE_H_
#define KELVA_VCAM_USBIP_CONTROL_PIPE_H_

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "base/Bytes.h"
#include "vcam/usbip/Descriptors.h"

namespace vcam::usbip {

/// What requests of endpoint 0 do to the pipes of the mass-storage interface.
class ControlledPipes {
 public:
  virtual ~ControlledPipes() = default;
  /// Back to waiting for a command; halts stay (Bulk-Only Mass Storage Reset).
  virtual void ResetTransport() = 0;
  /// Back to waiting for a command, nothing halted (a configuration was chosen).
  virtual void ResetAll() = 0;
  /// `address` is an endpoint address with its direction bit.
  virtual void SetHalt(std::uint8_t address, bool halted) = 0;
  virtual bool Halted(std::uint8_t address) const = 0;
};

using SetupPacket = std::array<std::uint8_t, 8>;

/// Endpoint 0: the standard requests and the two of the bulk-only transport.
class ControlPipe {
 public:
  /// `pipes` is borrowed and must outlive this object.
  ControlPipe(UsbIdentity identity, ControlledPipes& pipes) : identity_(std::move(identity)), pipes_(pipes) {}

  /// Carries a request out. Gives the bytes of the answer, at most as many as were asked for (none for a request to the
  /// device), or nothing: the request is stalled. `data` are the bytes of a request to the device.
  std::optional<base::Bytes> Handle(const SetupPacket& setup, std::span<const std::uint8_t> data);

  bool Configured() const { return configuration_ == 1; }

 private:
  std::optional<base::Bytes> ToDevice(std::uint8_t request, std::uint16_t value);
  std::optional<base::Bytes> ToInterface(std::uint8_t request, std::uint16_t value);
  std::optional<base::Bytes> ToEndpoint(std::uint8_t request, std::uint16_t value, std::uint16_t index);
  std::optional<base::Bytes> OfClass(std::uint8_t type, std::uint8_t request);

  UsbIdentity identity_;
  ControlledPipes& pipes_;
  std::uint8_t configuration_ = 0;
};

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_CONTROL_PIPE_H_

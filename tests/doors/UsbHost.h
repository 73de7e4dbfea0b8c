#ifndef KELVA_TESTS_DOORS_USB_HOST_H_
#define KELVA_TESTS_DOORS_USB_HOST_H_

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>

#include "base/Bytes.h"
#include "base/FileDescriptor.h"
#include "wire/Command.h"

namespace tests::doors {

/// The host's side of a USB cable over a USB/IP socket: the bulk-only transport as Linux's usb-storage drives it. Its
/// messages and wrappers are written here once more, independently of the camera's side.
class UsbHost {
 public:
  UsbHost(base::FileDescriptor socket, std::uint32_t device) : socket_(std::move(socket)), device_(device) {}

  /// Chooses the device's configuration; false when the device has gone.
  bool Configure();
  wire::Reply Execute(const wire::Command& command, std::chrono::milliseconds timeout);

 private:
  /// How one transfer ended.
  struct Urb {
    std::int32_t status = 0;
    std::uint32_t actual = 0;
    base::Bytes data{};
  };
  struct Transfer {
    std::uint8_t endpoint = 0;
    bool in = false;
    std::uint32_t length = 0;
    std::span<const std::uint8_t> data{};
    std::span<const std::uint8_t> setup{};
  };
  /// The status wrapper of a command.
  struct Status {
    std::uint32_t residue = 0;
    std::uint8_t status = 0;
  };

  wire::Reply Run(const wire::Command& command);
  Urb DataPhase(const wire::Command& command);
  Status ReadStatus();
  wire::Sense AskForSense();
  Urb Submit(const Transfer& transfer);
  Urb SubmitAndClear(const Transfer& transfer);
  base::Bytes Receive(std::size_t size);

  base::FileDescriptor socket_;
  std::uint32_t device_;
  std::uint32_t sequence_ = 0;
  std::uint32_t tag_ = 0x1000;
  std::chrono::steady_clock::time_point deadline_{};
};

}  // namespace tests::doors

#endif  // KELVA_TESTS_DOORS_USB_HOST_H_

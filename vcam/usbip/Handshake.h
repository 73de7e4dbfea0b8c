#ifndef KELVA_VCAM_USBIP_HANDSHAKE_H_
#define KELVA_VCAM_USBIP_HANDSHAKE_H_

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "base/Bytes.h"

// What the `usbip` command and a server say to each other before the kernel takes the connection over: one request, one
// answer. Protocol version 1.1.1.

namespace vcam::usbip {

inline constexpr std::size_t kRequestSize = 8;
inline constexpr std::size_t kBusIdSize = 32;

enum class Request : std::uint8_t { kListDevices, kImportDevice };

/// The outcome that an answer carries.
enum class Outcome : std::uint32_t { kOk = 0, kBusy = 2, kNoDevice = 4 };

/// USB speeds as the kernel numbers them.
enum class Speed : std::uint32_t { kHigh = 3, kSuper = 5 };

/// One device as it is offered to hosts.
struct Offer {
  std::string busId;
  std::uint32_t busNumber = 1;
  std::uint32_t deviceNumber = 2;
  Speed speed = Speed::kHigh;
  std::uint16_t vendor = 0;
  std::uint16_t product = 0;
  std::uint16_t release = 0;

  /// The number that the messages after an import name.
  std::uint32_t DeviceId() const { return busNumber << 16 | deviceNumber; }
};

/// Reads the head of a request. Throws ProtocolError.
Request DecodeRequest(std::span<const std::uint8_t, kRequestSize> head);
/// The bus id of an import request. Throws ProtocolError when it is not terminated or has an invalid character.
std::string DecodeBusId(std::span<const std::uint8_t, kBusIdSize> field);

base::Bytes EncodeDeviceList(const Offer& offer);
/// The answer to an import; only Outcome::kOk is followed by a device.
base::Bytes EncodeImport(Outcome outcome, const Offer& offer);

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_HANDSHAKE_H_

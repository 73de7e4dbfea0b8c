// Endpoint 0: the requests with which a host sets the device up, clears halts and resets the transport.
#include "vcam/usbip/ControlPipe.h"

namespace vcam::usbip {
namespace {

enum Recipient : std::uint8_t { kDevice = 0, kInterface = 1, kEndpoint = 2 };

// bmRequestType: bit 7 direction, bits 6-5 standard, class or vendor, bits 4-0 recipient.
constexpr std::uint8_t kToHost = 0x80;
constexpr std::uint8_t kTypeMask = 0x60;
constexpr std::uint8_t kClassType = 0x20;
constexpr std::uint8_t kRecipientMask = 0x1F;
constexpr std::uint8_t kClassToInterface = 0x21;
constexpr std::uint8_t kClassFromInterface = 0xA1;

enum StandardRequest : std::uint8_t {
  kGetStatus = 0,
  kClearFeature = 1,
  kSetFeature = 3,
  kSetAddress = 5,
  kGetDescriptor = 6,
  kGetConfiguration = 8,
  kSetConfiguration = 9,
  kGetInterface = 10,
  kSetInterface = 11,
  kSetExitLatencies = 48,
  kSetIsochronousDelay = 49,
};

enum ClassRequest : std::uint8_t { kGetMaxLun = 0xFE, kBulkOnlyReset = 0xFF };

constexpr std::uint16_t kEndpointHalt = 0;
constexpr std::uint16_t kFunctionSuspend = 0;
// Link power management of SuperSpeed, remote wake-up: accepted, without effect on a virtual cable.
constexpr std::uint16_t kFirstPowerFeature = 48;
constexpr std::uint16_t kLastPowerFeature = 50;
constexpr std::uint8_t kSelfPoweredStatus = 1;

const base::Bytes kDone{};

std::uint16_t Word(const SetupPacket& setup, std::size_t offset) {
  return base::Load<std::uint16_t>(std::span<const std::uint8_t>(setup), offset);
}

// Standard requests that read must have direction IN, those that write OUT.
bool Reads(std::uint8_t request) {
  return request == kGetStatus || request == kGetDescriptor || request == kGetConfiguration || request == kGetInterface;
}

bool IsPowerFeature(std::uint16_t value) {
  return value >= kFirstPowerFeature && value <= kLastPowerFeature;
}

}  // namespace

std::optional<base::Bytes> ControlPipe::Handle(const SetupPacket& setup, std::span<const std::uint8_t> data) {
  const std::uint16_t value = Word(setup, 2);
  const std::uint16_t index = Word(setup, 4);
  const std::uint16_t length = Word(setup, 6);
  const bool toHost = (setup[0] & kToHost) != 0;
  if (!toHost && data.size() != length) return std::nullopt;
  std::optional<base::Bytes> answer;
  if ((setup[0] & kTypeMask) == kClassType) {
    if (value == 0 && index == 0) answer = OfClass(setup[0], setup[1]);
  } else if ((setup[0] & kTypeMask) == 0 && Reads(setup[1]) == toHost) {
    switch (setup[0] & kRecipientMask) {
      case kDevice:
        answer = ToDevice(setup[1], value);
        break;
      case kInterface:
        answer = index == 0 ? ToInterface(setup[1], value) : std::nullopt;
        break;
      case kEndpoint:
        answer = ToEndpoint(setup[1], value, index);
        break;
      default:
        break;
    }
  }
  // Hosts read the head of a descriptor first, to learn its length.
  if (answer && answer->size() > length) answer->resize(length);
  return answer;
}

std::optional<base::Bytes> ControlPipe::ToDevice(std::uint8_t request, std::uint16_t value) {
  switch (request) {
    case kGetStatus:
      return base::Bytes{kSelfPoweredStatus, 0};
    case kGetDescriptor:
      return Describe(identity_, static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value));
    case kGetConfiguration:
      return base::Bytes{configuration_};
    case kSetConfiguration:
      if (value > 1) return std::nullopt;
      // Clears every halt, even when the host chooses the same configuration again.
      configuration_ = static_cast<std::uint8_t>(value);
      pipes_.ResetAll();
      return kDone;
    // The virtual controller sets the address, and a virtual cable has no latencies.
    case kSetAddress:
    case kSetExitLatencies:
    case kSetIsochronousDelay:
      return kDone;
    case kSetFeature:
    case kClearFeature:
      return IsPowerFeature(value) ? std::optional(kDone) : std::nullopt;
    default:
      return std::nullopt;
  }
}

std::optional<base::Bytes> ControlPipe::ToInterface(std::uint8_t request, std::uint16_t value) {
  switch (request) {
    case kGetStatus:
      return base::Bytes{0, 0};
    case kGetInterface:
      return base::Bytes{0};
    case kSetInterface:
      if (value != 0) return std::nullopt;
      pipes_.ResetAll();
      return kDone;
    case kSetFeature:
    case kClearFeature:
      return value == kFunctionSuspend ? std::optional(kDone) : std::nullopt;
    default:
      return std::nullopt;
  }
}

std::optional<base::Bytes> ControlPipe::ToEndpoint(std::uint8_t request, std::uint16_t value, std::uint16_t index) {
  const auto address = static_cast<std::uint8_t>(index);
  // Endpoint 0 may be named in both directions.
  const bool exists = index == (0x80 | kBulkIn) || index == kBulkOut || (index & 0xFF7F) == 0;
  if (!exists) return std::nullopt;
  switch (request) {
    case kGetStatus:
      return base::Bytes{static_cast<std::uint8_t>(pipes_.Halted(address) ? 1 : 0), 0};
    case kSetFeature:
    case kClearFeature:
      if (value != kEndpointHalt) return std::nullopt;
      pipes_.SetHalt(address, request == kSetFeature);
      return kDone;
    default:
      return std::nullopt;
  }
}

std::optional<base::Bytes> ControlPipe::OfClass(std::uint8_t type, std::uint8_t request) {
  if (type == kClassFromInterface && request == kGetMaxLun) return base::Bytes{0};
  if (type == kClassToInterface && request == kBulkOnlyReset) {
    pipes_.ResetTransport();
    return kDone;
  }
  return std::nullopt;
}

}  // namespace vcam::usbip

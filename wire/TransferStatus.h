#ifndef KELVA_WIRE_TRANSFER_STATUS_H_
#define KELVA_WIRE_TRANSFER_STATUS_H_

#include <cstdint>

// What UserClientTransferResult.status holds when a command failed although the call itself returned 0. Every back end
// speaks this one language, so that advice given for one holds for all.
//
//   SCSI status   0xQQAAKKSS   SS the status byte (2 check condition, 8 busy, ...), KK the sense key, AA the additional
//                              sense code, QQ its qualifier; the upper three bytes are 0 without sense data
//   transport     0x00DDHHFF   HH the host status, DD the driver status: the command did not end in order
//
// A camera that has gone, a time-out and a busy bus are return codes of the call instead: kIOReturnNoDevice,
// kIOReturnTimeout, kIOReturnBusy.

namespace wire {

inline constexpr std::uint8_t kScsiGood = 0x00;
inline constexpr std::uint8_t kScsiCheckCondition = 0x02;
inline constexpr std::uint8_t kScsiBusy = 0x08;
inline constexpr std::uint8_t kTransportFailed = 0xFF;

/// The three numbers of sense data that say why a command failed; all 0 when the device gave no reason.
struct Sense {
  std::uint8_t key = 0;
  std::uint8_t asc = 0;   ///< additional sense code
  std::uint8_t ascq = 0;  ///< its qualifier
  bool operator==(const Sense&) const = default;
};

/// The result status of a command that ended with a SCSI status other than good.
constexpr std::uint32_t ScsiResultStatus(std::uint8_t status, Sense sense = {}) {
  return std::uint32_t{status} | std::uint32_t{sense.key} << 8 | std::uint32_t{sense.asc} << 16 |
         std::uint32_t{sense.ascq} << 24;
}

/// The result status of a command whose transport failed; never 0.
constexpr std::uint32_t TransportResultStatus(std::uint8_t hostStatus, std::uint8_t driverStatus) {
  return std::uint32_t{kTransportFailed} | std::uint32_t{hostStatus} << 8 | std::uint32_t{driverStatus} << 16;
}

/// The SCSI status byte of a result status, or kTransportFailed.
constexpr std::uint8_t StatusByte(std::uint32_t resultStatus) {
  return static_cast<std::uint8_t>(resultStatus);
}

/// The sense values of a result status; all 0 when there was none or the transport failed.
constexpr Sense SenseOf(std::uint32_t resultStatus) {
  if (StatusByte(resultStatus) == kTransportFailed) return {};
  return {static_cast<std::uint8_t>(resultStatus >> 8), static_cast<std::uint8_t>(resultStatus >> 16),
          static_cast<std::uint8_t>(resultStatus >> 24)};
}

/// The host and driver status of a result status whose transport failed.
constexpr std::uint8_t HostStatusOf(std::uint32_t resultStatus) {
  return static_cast<std::uint8_t>(resultStatus >> 8);
}
constexpr std::uint8_t DriverStatusOf(std::uint32_t resultStatus) {
  return static_cast<std::uint8_t>(resultStatus >> 16);
}

}  // namespace wire

#endif  // KELVA_WIRE_TRANSFER_STATUS_H_

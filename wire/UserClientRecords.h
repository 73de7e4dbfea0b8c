#ifndef KELVA_WIRE_USER_CLIENT_RECORDS_H_
#define KELVA_WIRE_USER_CLIENT_RECORDS_H_

// The records exchanged with the kernel driver's user client, and its selectors. Needs only std, so that a driver's end
// in user space can include it without the rest of the library.

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace wire {

/// Scalar method without arguments: starts the session.
inline constexpr std::uint32_t kUserClientStartSession = 0;
/// Scalar method without arguments: ends the session.
inline constexpr std::uint32_t kUserClientEndSession = 1;
/// Struct method: one UserClientTransferRequest in, one UserClientTransferResult out.
inline constexpr std::uint32_t kUserClientTransfer = 2;

#pragma pack(push, 1)

/// One SCSI command, caller to driver; native (little-endian) byte order, no padding.
struct UserClientTransferRequest {
  std::uint8_t direction;       ///< 0 no data phase, 1 to the camera, 2 from the camera
  std::uint8_t cdbLength;       ///< always 16
  std::uint8_t cdb[16];         ///< the command block
  std::int32_t length;          ///< bytes asked for, as the caller gave it
  std::uint32_t timeout;        ///< always 100; the unit is the driver's
  std::uint64_t bufferAddress;  ///< the caller's buffer; the driver moves the data itself. 0 for none
};

/// How the command ended, driver to caller.
struct UserClientTransferResult {
  std::uint32_t status;       ///< 0 completed; anything else is a failure
  std::int32_t actualLength;  ///< data bytes moved
};

#pragma pack(pop)

static_assert(sizeof(UserClientTransferRequest) == 34);
static_assert(offsetof(UserClientTransferRequest, cdb) == 2 && offsetof(UserClientTransferRequest, length) == 18 &&
              offsetof(UserClientTransferRequest, timeout) == 22 &&
              offsetof(UserClientTransferRequest, bufferAddress) == 26);
static_assert(sizeof(UserClientTransferResult) == 8);
static_assert(std::is_trivially_copyable_v<UserClientTransferRequest>);
static_assert(std::is_trivially_copyable_v<UserClientTransferResult>);

}  // namespace wire

#endif  // KELVA_WIRE_USER_CLIENT_RECORDS_H_

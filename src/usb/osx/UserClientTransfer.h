#ifndef KELVA_USB_OSX_USER_CLIENT_TRANSFER_H_
#define KELVA_USB_OSX_USER_CLIENT_TRANSFER_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "VscCdb.h"
#include "wire/UserClientRecords.h"

// Builds the request to the driver, and writes and reads the report of a failed transfer. Makes no system call.

namespace kelva {

/// The request for one command. A direction other than 1 and 2 becomes 0; size and buffer are copied unchanged.
wire::UserClientTransferRequest MakeTransferRequest(const _VscCdb& cdb, int direction, int size, const void* buffer);

/// A failed transfer.
struct TransferReport {
  _VscCdb cdb;
  std::int32_t returnCode;  ///< of the call, a kern_return_t
  std::uint32_t status;     ///< of the command (wire/TransferStatus.h); meaningless unless returnCode is 0
};

/// The command block as 16 pairs of hexadecimal digits, "c6 00 04 ...".
std::string BlockText(const _VscCdb& cdb);

/// The message of a failed transfer: three lines with the command block, the return code and the status.
std::string WriteTransferReport(const TransferReport& report);

/// Reads the report back from the message of a CameraTransferError; nothing for any other message.
std::optional<TransferReport> ReadTransferReport(std::string_view message);

}  // namespace kelva

#endif  // KELVA_USB_OSX_USER_CLIENT_TRANSFER_H_

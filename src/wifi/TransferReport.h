#ifndef KELVA_WIFI_TRANSFER_REPORT_H_
#define KELVA_WIFI_TRANSFER_REPORT_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "VscCdb.h"

// Writes and reads the message of a failed transfer.

namespace kelva {

/// A failed transfer.
struct TransferReport {
  _VscCdb cdb;
  std::int32_t returnCode;  ///< of the call, a kern_return_t
  /// Of the command; meaningless unless returnCode is 0. Where this project stands in for the driver, it holds what
  /// wire/TransferStatus.h says.
  std::uint32_t status;
};

/// The command block as 16 pairs of hexadecimal digits, "c6 00 04 ...".
std::string BlockText(const _VscCdb& cdb);

/// The message of a failed transfer: three lines with the command block, the return code and the status.
std::string WriteTransferReport(const TransferReport& report);

/// Reads the report back from the message of a CameraTransferError; nothing for any other message.
std::optional<TransferReport> ReadTransferReport(std::string_view message);

}  // namespace kelva

#endif  // KELVA_WIFI_TRANSFER_REPORT_H_

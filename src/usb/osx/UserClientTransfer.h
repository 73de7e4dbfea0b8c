#ifndef KELVA_USB_OSX_USER_CLIENT_TRANSFER_H_
#define KELVA_USB_OSX_USER_CLIENT_TRANSFER_H_

#include <cstdint>
#include <string>

#include "VscCdb.h"
#include "wire/UserClientRecords.h"

// The building and checking of the records, without any call to the system.

/// The request for one command. A direction other than 1 and 2 becomes 0; size and buffer are copied as they stand.
wire::UserClientTransferRequest MakeTransferRequest(const _VscCdb& cdb, int direction, int size, const void* buffer);

/// What a failed transfer says: three lines with the command block, the call's return code and the device's status.
std::string TransferErrorReport(const _VscCdb& cdb, std::int32_t returnCode, std::uint32_t status);

#endif  // KELVA_USB_OSX_USER_CLIENT_TRANSFER_H_

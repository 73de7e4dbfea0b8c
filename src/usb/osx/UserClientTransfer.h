#ifndef KELVA_USB_OSX_USER_CLIENT_TRANSFER_H_
#define KELVA_USB_OSX_USER_CLIENT_TRANSFER_H_

#include "TransferReport.h"
#include "VscCdb.h"
#include "wire/UserClientRecords.h"

// Builds the request to the driver. Makes no system call. The report of a failed transfer is beside the command set, because
// whoever observes a transfer reads it too.

namespace kelva {

/// The request for one command. A direction other than 1 and 2 becomes 0; size and buffer are copied unchanged.
wire::UserClientTransferRequest MakeTransferRequest(const _VscCdb& cdb, int direction, int size, const void* buffer);

}  // namespace kelva

#endif  // KELVA_USB_OSX_USER_CLIENT_TRANSFER_H_

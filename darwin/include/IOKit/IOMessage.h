#ifndef KELVA_DARWIN_INCLUDE_IO_KIT_IO_MESSAGE_H_
#define KELVA_DARWIN_INCLUDE_IO_KIT_IO_MESSAGE_H_

#include "IOReturn.h"

#define iokit_common_msg(message) ((unsigned int)(0xE0000000u | (message)))

#define kIOMessageServiceIsTerminated iokit_common_msg(0x010)
#define kIOMessageServiceIsSuspended iokit_common_msg(0x020)
#define kIOMessageServiceIsResumed iokit_common_msg(0x030)
#define kIOMessageServiceIsRequestingClose iokit_common_msg(0x100)
#define kIOMessageServiceIsAttemptingOpen iokit_common_msg(0x101)
#define kIOMessageServiceWasClosed iokit_common_msg(0x110)
#define kIOMessageServicePropertyChange iokit_common_msg(0x130)

#endif  // KELVA_DARWIN_INCLUDE_IO_KIT_IO_MESSAGE_H_

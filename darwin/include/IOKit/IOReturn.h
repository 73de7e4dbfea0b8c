#ifndef KELVA_DARWIN_INCLUDE_IO_KIT_IO_RETURN_H_
#define KELVA_DARWIN_INCLUDE_IO_KIT_IO_RETURN_H_

// Return codes, each with the framework's own value. The type is signed, so the errors are negative.

typedef int kern_return_t;
typedef kern_return_t IOReturn;

#define KERN_SUCCESS 0
#define KERN_INVALID_NAME 15
#define MACH_SEND_INVALID_DEST 0x10000003

#define kIOReturnSuccess KERN_SUCCESS
#define kIOReturnError ((IOReturn)0xE00002BC)
#define kIOReturnNoMemory ((IOReturn)0xE00002BD)
#define kIOReturnNoDevice ((IOReturn)0xE00002C0)
#define kIOReturnNotPrivileged ((IOReturn)0xE00002C1)
#define kIOReturnBadArgument ((IOReturn)0xE00002C2)
#define kIOReturnExclusiveAccess ((IOReturn)0xE00002C5)
#define kIOReturnUnsupported ((IOReturn)0xE00002C7)
#define kIOReturnIOError ((IOReturn)0xE00002CA)
#define kIOReturnNotOpen ((IOReturn)0xE00002CD)
#define kIOReturnBusy ((IOReturn)0xE00002D5)
#define kIOReturnTimeout ((IOReturn)0xE00002D6)
#define kIOReturnNotReady ((IOReturn)0xE00002D8)
#define kIOReturnNotAttached ((IOReturn)0xE00002D9)
#define kIOReturnMessageTooLarge ((IOReturn)0xE00002E1)
#define kIOReturnNotPermitted ((IOReturn)0xE00002E2)
#define kIOReturnNotFound ((IOReturn)0xE00002F0)

#endif  // KELVA_DARWIN_INCLUDE_IO_KIT_IO_RETURN_H_

#ifndef KELVA_DARWIN_INCLUDE_IO_KIT_IO_KIT_LIB_H_
#define KELVA_DARWIN_INCLUDE_IO_KIT_IO_KIT_LIB_H_

// The part of IOKit's user-space library that this project uses, with the framework's own signatures and meaning.

#include <CoreFoundation/CoreFoundation.h>

#include "IOKitKeys.h"
#include "IOReturn.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef unsigned int mach_port_t;
typedef mach_port_t task_port_t;
typedef UInt32 IOOptionBits;
typedef char io_name_t[128];

typedef mach_port_t io_object_t;
typedef io_object_t io_connect_t;
typedef io_object_t io_iterator_t;
typedef io_object_t io_registry_entry_t;
typedef io_object_t io_service_t;

#define IO_OBJECT_NULL ((io_object_t)0)
#define MACH_PORT_NULL ((mach_port_t)0)

extern const mach_port_t kIOMasterPortDefault;
extern const mach_port_t kIOMainPortDefault;

extern mach_port_t mach_task_self_;
#define mach_task_self() mach_task_self_

typedef struct IONotificationPort* IONotificationPortRef;

typedef void (*IOServiceMatchingCallback)(void* refcon, io_iterator_t iterator);
typedef void (*IOServiceInterestCallback)(void* refcon, io_service_t service, uint32_t messageType,
                                          void* messageArgument);

IONotificationPortRef IONotificationPortCreate(mach_port_t mainPort);
void IONotificationPortDestroy(IONotificationPortRef notify);
CFRunLoopSourceRef IONotificationPortGetRunLoopSource(IONotificationPortRef notify);

kern_return_t IOObjectRelease(io_object_t object);
kern_return_t IOObjectRetain(io_object_t object);

io_object_t IOIteratorNext(io_iterator_t iterator);

CFMutableDictionaryRef IOServiceMatching(const char* name);
kern_return_t IOServiceGetMatchingServices(mach_port_t mainPort, CFDictionaryRef matching, io_iterator_t* existing);
kern_return_t IOServiceAddMatchingNotification(IONotificationPortRef notifyPort, const io_name_t notificationType,
                                               CFDictionaryRef matching, IOServiceMatchingCallback callback,
                                               void* refCon, io_iterator_t* notification);
kern_return_t IOServiceAddInterestNotification(IONotificationPortRef notifyPort, io_service_t service,
                                               const io_name_t interestType, IOServiceInterestCallback callback,
                                               void* refCon, io_object_t* notification);

kern_return_t IORegistryEntryGetParentEntry(io_registry_entry_t entry, const io_name_t plane,
                                            io_registry_entry_t* parent);
kern_return_t IORegistryEntryGetChildIterator(io_registry_entry_t entry, const io_name_t plane,
                                              io_iterator_t* iterator);
CFTypeRef IORegistryEntryCreateCFProperty(io_registry_entry_t entry, CFStringRef key, CFAllocatorRef allocator,
                                          IOOptionBits options);

kern_return_t IOServiceOpen(io_service_t service, task_port_t owningTask, uint32_t type, io_connect_t* connect);
kern_return_t IOServiceClose(io_connect_t connect);
kern_return_t IOConnectCallScalarMethod(mach_port_t connection, uint32_t selector, const uint64_t* input,
                                        uint32_t inputCnt, uint64_t* output, uint32_t* outputCnt);
kern_return_t IOConnectCallStructMethod(mach_port_t connection, uint32_t selector, const void* inputStruct,
                                        size_t inputStructCnt, void* outputStruct, size_t* outputStructCnt);

#ifdef __cplusplus
}
#endif

#endif  // KELVA_DARWIN_INCLUDE_IO_KIT_IO_KIT_LIB_H_

#ifndef KELVA_DARWIN_INCLUDE_IO_KIT_IO_KIT_KEYS_H_
#define KELVA_DARWIN_INCLUDE_IO_KIT_IO_KIT_KEYS_H_

#define kIOServicePlane "IOService"
#define kIOClassKey "IOClass"
#define kIOProviderClassKey "IOProviderClass"
#define kIOPropertyMatchKey "IOPropertyMatch"
#define kIOFirstMatchNotification "IOServiceFirstMatch"
#define kIOGeneralInterest "IOGeneralInterest"

#endif  // KELVA_DARWIN_INCLUDE_IO_KIT_IO_KIT_KEYS_H_

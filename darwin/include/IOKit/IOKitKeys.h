#ifndef KELVA_DARWIN_IOKITKEYS_H_
#define KELVA_DARWIN_IOKITKEYS_H_

#define kIOServicePlane "IOService"
#define kIOClassKey "IOClass"
#define kIOProviderClassKey "IOProviderClass"
#define kIOPropertyMatchKey "IOPropertyMatch"
#define kIOFirstMatchNotification "IOServiceFirstMatch"
#define kIOGeneralInterest "IOGeneralInterest"

#endif  // KELVA_DARWIN_IOKITKEYS_H_

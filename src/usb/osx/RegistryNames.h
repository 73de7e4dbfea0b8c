#ifndef KELVA_USB_OSX_REGISTRY_NAMES_H_
#define KELVA_USB_OSX_REGISTRY_NAMES_H_

// The registry's own strings: property keys, the values compared, class names and notification types.

inline constexpr const char* kPropertyMatchName = "IOPropertyMatch";
inline constexpr const char* kClassName = "IOClass";
inline constexpr const char* kVendorName = "Vendor Identification";
inline constexpr const char* kRevisionName = "Product Revision Level";
inline constexpr const char* kSerialName = "USB Serial Number";

inline constexpr const char* kVendor = "Kelva";
inline constexpr const char* kBadCameraRevision = "Q42";
inline constexpr const char* kDriverClass = "com_kelva_Glimmer";
inline constexpr const char* kMassStorageDriverClass = "com_kelva_Glimmer_ms";
inline constexpr const char* kCompactDiscClass = "IOCompactDiscServices";

inline constexpr const char* kFirstMatchType = "IOServiceFirstMatch";
inline constexpr const char* kGeneralInterestType = "IOGeneralInterest";

#endif  // KELVA_USB_OSX_REGISTRY_NAMES_H_

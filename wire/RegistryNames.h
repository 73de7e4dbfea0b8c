#ifndef KELVA_WIRE_REGISTRY_NAMES_H_
#define KELVA_WIRE_REGISTRY_NAMES_H_

#include <string_view>

// The strings by which the I/O registry shows a camera, and the inquiry values that tell a camera from other devices.
// OsxCamera searches for them; whoever fills a registry writes them.

namespace wire {

// Property keys.
inline constexpr const char* kPropertyMatchName = "IOPropertyMatch";
inline constexpr const char* kClassName = "IOClass";
inline constexpr const char* kVendorName = "Vendor Identification";
inline constexpr const char* kProductName = "Product Identification";
inline constexpr const char* kRevisionName = "Product Revision Level";
inline constexpr const char* kSerialName = "USB Serial Number";

// Class names, the plane that is walked for parents, and the notification types.
inline constexpr const char* kDriverClass = "com_kelva_Glimmer";
inline constexpr const char* kMassStorageDriverClass = "com_kelva_Glimmer_ms";
inline constexpr const char* kCompactDiscClass = "IOCompactDiscServices";
inline constexpr const char* kServicePlane = "IOService";
inline constexpr const char* kFirstMatchType = "IOServiceFirstMatch";
inline constexpr const char* kGeneralInterestType = "IOGeneralInterest";

// SCSI inquiry data.
inline constexpr const char* kVendor = "Kelva";
inline constexpr const char* kBadCameraRevision = "Q42";
inline constexpr int kDiskType = 0;         ///< peripheral device type
inline constexpr int kCompactDiscType = 5;  ///< peripheral device type

/// True for a camera that shows itself as a compact disc and takes no commands.
constexpr bool IsBadCamera(int peripheralType, std::string_view revision) {
  return peripheralType == kCompactDiscType && revision == kBadCameraRevision;
}

}  // namespace wire

#endif  // KELVA_WIRE_REGISTRY_NAMES_H_

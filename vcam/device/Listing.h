#ifndef KELVA_VCAM_DEVICE_LISTING_H_
#define KELVA_VCAM_DEVICE_LISTING_H_

#include <vector>

#include "vcam/device/DataSet.h"

namespace vcam {

/// The volume label, which stands in the listing of the root.
inline constexpr const char* kVolumeLabel = "KELVA";

/// The listing answer of one directory: ".", "..", in the root the volume label, then the entries by name.
/// A file of 4 GiB or more is listed with the size 0xFFFFFFFF.
DataSet BuildListing(const std::vector<StorageEntry>& entries, bool isRoot);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_LISTING_H_

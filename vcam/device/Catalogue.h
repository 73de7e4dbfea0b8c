#ifndef KELVA_VCAM_DEVICE_CATALOGUE_H_
#define KELVA_VCAM_DEVICE_CATALOGUE_H_

#include <vector>

#include "vcam/device/DataSet.h"
#include "vcam/device/Options.h"
#include "vcam/device/Pictures.h"

namespace vcam {

/// One catalogue record before it is laid out: field types 0 to 9, one after another, in 128 bytes.
///
/// Types 5 to 9 are this camera's own: 5 the size of the JPG file in bytes, 6 the size of all files in megabytes, 7 the
/// key of the picture's first file as text with a NUL, 8 the time of its last change in UTC as text
/// "2026-03-14 15:09:26" with a NUL, 9 the same time in seconds since 1970.
base::Bytes PlainRecord(const Picture& picture, const std::string& key);

/// The catalogue answer: version 1, stride, field table, one record per picture.
DataSet BuildCatalogue(const std::vector<base::Bytes>& plainRecords, const CatalogueLayout& layout);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_CATALOGUE_H_

#ifndef KELVA_VCAM_DEVICE_INFORMATION_H_
#define KELVA_VCAM_DEVICE_INFORMATION_H_

#include <vector>

#include "vcam/device/Bundles.h"
#include "vcam/device/Device.h"

namespace vcam {

/// The information record, 644 bytes. In the first 640: NUL-terminated texts one after another (serial number, vendor,
/// product, revision, firmware, volume label), the rest zero. Then a 32-bit number, 0.
base::Bytes InformationRecord(const Device& device, Marks& marks);

/// The crash logs, in the folder CRASH: their names in the bundle are whole camera paths, so that the host can delete
/// them by name. Files whose path is longer than kMaxCrashLogName are left out.
std::vector<BundleFile> FindCrashLogs(const Storage& storage);

/// The calibration files: the first 31 by name in the folder CALIB. Names longer than kMaxCalibrationName are left out.
std::vector<BundleFile> FindCalibration(const Storage& storage);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_INFORMATION_H_

#ifndef KELVA_VCAM_DEVICE_BUNDLES_H_
#define KELVA_VCAM_DEVICE_BUNDLES_H_

#include <string>
#include <vector>

#include "vcam/device/DataSet.h"

namespace vcam {

/// A file that goes into a bundle, and the name that the bundle gives it.
struct BundleFile {
  std::string name;
  std::string path;
  std::uint64_t size = 0;
};

/// The longest name of a crash log. The host takes the bodies from byte 36 x N on, four bytes before the table ends, so
/// the first four body bytes are the last four of the last name field; a name must end, with its NUL, before them.
inline constexpr std::size_t kMaxCrashLogName = 27;
/// The longest name of a calibration file; its field of 32 bytes ends with a NUL.
inline constexpr std::size_t kMaxCalibrationName = 31;
inline constexpr std::size_t kCalibrationEntries = 31;

/// Count N, N entries of 36 bytes, bodies from byte 36 x N.
DataSet BuildCrashLogBundle(const std::vector<BundleFile>& files);

/// Always 31 entries of 36 bytes, unused ones all zero, bodies from byte 1,116; at most 31 files.
DataSet BuildCalibrationBundle(const std::vector<BundleFile>& files);

/// N sizes, then the bodies from byte 4 x N. A file without a path stands for one that the camera does not have; its
/// size is 0.
DataSet BuildBatchBundle(const std::vector<BundleFile>& files);

/// Two sizes, then the file: its first half, rounded up, and the rest.
DataSet BuildCompressedRawBundle(const BundleFile& file);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_BUNDLES_H_

// The information record, and the files that go into the bundles of crash logs and calibration.
#include "vcam/device/Information.h"

#include "src/wifi/VscRecords.h"
#include "vcam/device/CameraPath.h"
#include "vcam/device/Listing.h"
#include "vcam/device/Opaque.h"

namespace vcam {
namespace {

constexpr const char* kCrashFolder = "CRASH";
constexpr const char* kCalibrationFolder = "CALIB";
constexpr const char* kFactoryFirmware = "factory";
constexpr std::size_t kTextsLength = offsetof(_VscCdbCameraInformation, last);

}  // namespace

base::Bytes InformationRecord(const Device& device, Marks& marks) {
  const std::string firmware = device.upgrade.Firmware(device.options.now());
  base::Bytes record;
  for (const std::string& text :
       {device.options.serial, device.options.vendor, device.options.product, device.options.revision,
        firmware.empty() ? std::string(kFactoryFirmware) : firmware, std::string(kVolumeLabel)}) {
    marks.names.push_back({record.size(), text.size() + 1});
    base::AppendString(record, text);
  }
  record.resize(kTextsLength);
  record.resize(sizeof(_VscCdbCameraInformation));
  if (device.options.opaque) marks.names.clear();
  MakeOpaque(device.options.opaque, "information", record);
  return record;
}

std::vector<BundleFile> FindCrashLogs(const Storage& storage) {
  std::vector<BundleFile> files;
  for (const StorageEntry& entry : storage.List(kCrashFolder)) {
    const std::string path = std::string(kCrashFolder) + "/" + entry.name;
    const std::string name = CameraPath(path);
    if (!entry.isDirectory && name.size() <= kMaxCrashLogName) files.push_back({name, path, entry.stamp.size});
  }
  return files;
}

std::vector<BundleFile> FindCalibration(const Storage& storage) {
  std::vector<BundleFile> files;
  for (const StorageEntry& entry : storage.List(kCalibrationFolder)) {
    if (entry.isDirectory || entry.name.size() > kMaxCalibrationName || files.size() == kCalibrationEntries) continue;
    files.push_back({entry.name, std::string(kCalibrationFolder) + "/" + entry.name, entry.stamp.size});
  }
  return files;
}

}  // namespace vcam

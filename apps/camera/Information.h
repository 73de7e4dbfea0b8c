#ifndef KELVA_APPS_CAMERA_INFORMATION_H_
#define KELVA_APPS_CAMERA_INFORMATION_H_

#include <string>
#include <vector>

#include "apps/camera/Registry.h"
#include "src/wifi/VscRecords.h"

namespace apps {

/// The NUL-terminated texts of an information record, up to the last text that is not empty. Nothing when the record is
/// anything else: bytes that are not UTF-8, or control characters.
std::vector<std::string> InformationTexts(const _VscCdbCameraInformation& record);

/// Whether the texts are those that this project knows: serial number, vendor, product, revision, firmware and volume label.
/// The camera defines the record, so they count only when the system gives the camera the same serial number and vendor.
bool AreKnownTexts(const std::vector<std::string>& texts, const RegistryCamera& facts);

/// The firmware version; empty when the record does not say it in the way that this project knows.
std::string FirmwareIn(const _VscCdbCameraInformation& record, const RegistryCamera& facts);

/// What the known text at this index means; empty beyond the last.
std::string InformationName(std::size_t index);

/// The 640 bytes of the record in lines of 16, each with its offset.
std::string InformationDump(const _VscCdbCameraInformation& record);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_INFORMATION_H_

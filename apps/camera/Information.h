#ifndef KELVA_APPS_CAMERA_INFORMATION_H_
#define KELVA_APPS_CAMERA_INFORMATION_H_

#include <string>
#include <vector>

#include "src/wifi/VscRecords.h"

namespace apps {

/// The texts of an information record: NUL-terminated, one after another, empty ones included, up to the last that is
/// not. They are the camera's own; this project's cameras send serial number, vendor, product, revision, firmware and
/// volume label.
std::vector<std::string> InformationTexts(const _VscCdbCameraInformation& record);

/// The firmware among them, empty when the camera does not say.
std::string FirmwareIn(const _VscCdbCameraInformation& record);

/// The names that this project's cameras give their texts; empty beyond the last.
std::string InformationName(std::size_t index);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_INFORMATION_H_

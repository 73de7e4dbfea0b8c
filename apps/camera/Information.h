#ifndef KELVA_APPS_CAMERA_INFORMATION_H_
#define KELVA_APPS_CAMERA_INFORMATION_H_

#include <string>
#include <vector>

#include "src/wifi/VscRecords.h"

namespace apps {

/// The NUL-terminated texts of an information record, up to the last text that is not empty. The camera defines them;
/// the virtual camera sends serial number, vendor, product, revision, firmware and volume label.
std::vector<std::string> InformationTexts(const _VscCdbCameraInformation& record);

/// The text with the firmware version; empty when the camera does not send one.
std::string FirmwareIn(const _VscCdbCameraInformation& record);

/// What the text at this index means in the virtual camera's record; empty beyond the last.
std::string InformationName(std::size_t index);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_INFORMATION_H_

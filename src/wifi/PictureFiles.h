#ifndef KELVA_WIFI_PICTURE_FILES_H_
#define KELVA_WIFI_PICTURE_FILES_H_

#include <optional>
#include <string>

#include "DcfObj.h"

namespace kelva {

/// The camera path of one of a picture's files; nothing when the picture has no file of that type.
std::optional<std::string> PictureFilePath(const DcfObj& picture, int type);

/// "ReadFile() file type N does not exist."
std::string NoSuchFileType(int type);

}  // namespace kelva

#endif  // KELVA_WIFI_PICTURE_FILES_H_

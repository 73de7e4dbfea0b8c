#ifndef KELVA_APPS_FILES_SAFE_NAME_H_
#define KELVA_APPS_FILES_SAFE_NAME_H_

#include <string>
#include <string_view>

namespace apps {

/// A file name of one component made from a camera's bytes. Names that are harmless stay as they are. Others are
/// written with %XX for each byte that is not safe in a name here: '/', '\', '%', control characters, bytes that are
/// not UTF-8, and a dot or a blank at the start. Two different names stay different. A name that would be longer than
/// 200 bytes keeps its start and its extension, with a check sum of the whole name between them.
std::string SafeName(std::string_view cameraBytes);

}  // namespace apps

#endif  // KELVA_APPS_FILES_SAFE_NAME_H_

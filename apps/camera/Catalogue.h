#ifndef KELVA_APPS_CAMERA_CATALOGUE_H_
#define KELVA_APPS_CAMERA_CATALOGUE_H_

#include <string>
#include <vector>

#include "apps/commandline/Json.h"
#include "src/wifi/Camera.h"
#include "src/wifi/DcfObj.h"

namespace apps {

/// The pictures of `catalogue` that a person means: "IMG_0001", "100ABCDE/IMG_0001", with or without an extension, in
/// any case. Throws Failure when there is none, or several.
DcfObj FindPicture(const std::vector<DcfObj>& catalogue, const std::string& name);

/// As FindPicture, and a name may be a pattern (see Meant.h), which means every picture that it matches. Throws Failure
/// when there is none.
std::vector<DcfObj> FindPictures(const std::vector<DcfObj>& catalogue, const std::string& name);

/// The picture's folder and name, printable, and in quotes where a shell needs them: "100ABCDE/IMG_0001".
std::string PictureName(const DcfObj& picture);

/// A picture's members in JSON style: name, folder, number, types, key and time where there are, and the camera's own
/// fields.
Json PictureMembers(const DcfObj& picture);

/// The types of the picture's files: "JPG RAW".
std::string TypeList(const DcfObj& picture);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_CATALOGUE_H_

#ifndef KELVA_APPS_CAMERA_MEANT_H_
#define KELVA_APPS_CAMERA_MEANT_H_

#include <optional>
#include <string>
#include <vector>

#include "apps/camera/FolderListing.h"
#include "apps/commandline/Context.h"
#include "src/wifi/Camera.h"

namespace apps {

/// The files and folders that a typed path means, as the camera lists them. A path in another case of letters means the
/// one that is listed, and a note says so. A path that is not listed may be a pattern: * ? and [...] match within a name.
/// The path itself, unchanged, when nothing is listed that it could mean. Throws CameraError as Camera::ReadDir does, but
/// for a folder that the camera refuses to list.
std::vector<std::string> Meant(Context& context, Camera& camera, const std::string& cameraPath);

/// As Meant, for a path that has to mean one thing. Throws Failure(kUsage) for a pattern that matches several.
std::string MeantOne(Context& context, Camera& camera, const std::string& cameraPath);

/// As Meant, for a path as it was typed. A name without a folder also means a file in one of the picture folders below DCIM,
/// where nothing on the drive itself has that name; "100ABCDE/IMG_0001.JPG" also means what lies so below DCIM. Throws
/// Failure(kUsage) when a name lies in several folders and is no pattern, and as ToCameraPath.
std::vector<std::string> FilesMeant(Context& context, Camera& camera, const std::string& typed);

/// As FilesMeant, for a path that has to mean one thing; as MeantOne.
std::string FileMeant(Context& context, Camera& camera, const std::string& typed);

/// FilesMeant for each of several paths, in order and without repetitions.
std::vector<std::string> AllFilesMeant(Context& context, Camera& camera, const std::vector<std::string>& typed);

/// A path with its folder as the camera lists it; the last part, which may be new, only where it is listed. For the target
/// of a file.
std::string InListedFolder(Context& context, Camera& camera, const std::string& cameraPath);

/// The entry of a path. Nothing without one, nor in a folder that the camera refuses to list: the folder is not there.
std::optional<CameraDirent> EntryIfListed(KnownListings& listings, const std::string& cameraPath);

/// Whether a name matches a pattern with * ? and [...], in any case of letters.
bool MatchesName(const std::string& pattern, const std::string& name);
/// Whether text has a character that makes it a pattern.
bool IsPattern(std::string_view text);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_MEANT_H_

#ifndef KELVA_APPS_IMPORT_OTHERS_H_
#define KELVA_APPS_IMPORT_OTHERS_H_

#include <string>
#include <vector>

#include "apps/commandline/Context.h"
#include "apps/import/Manifest.h"
#include "apps/import/Pattern.h"
#include "src/wifi/Camera.h"
#include "src/wifi/DcfObj.h"

namespace apps {

/// A file below DCIM or MISC that is not in the catalogue: a video, a panorama, a file with a name of its own.
struct OtherFile {
  std::string path;  ///< the camera's: "I:\DCIM\100ABCDE\MVI_0001.MP4"
  unsigned long long size = 0;

  /// The folder below DCIM that it lies in, at whatever depth: "100ABCDE". Empty when it lies elsewhere.
  std::string Folder() const;
  /// Where it goes below the target: under the names that its folders and it have on the camera, made safe, without DCIM
  /// where it lies in a folder there.
  LocalPath Local() const;
  /// In a manifest. Listings have no times, so path and size are all that tells it from another file.
  ManifestKey Key(const std::string& serial) const;
};

/// The other files of a camera.
struct OtherFiles {
  std::vector<OtherFile> files;
  bool isCut = false;  ///< there are more, or a folder could not be listed
};

/// Lists the folders below DCIM and MISC. Folders and files are bounded in depth and number, since a camera chooses both. A
/// folder that the camera does not list is left out. Throws Stopped.
OtherFiles FindOthers(Context& context, Camera& camera, const std::vector<DcfObj>& catalogue);

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_OTHERS_H_

#ifndef KELVA_APPS_CAMERA_FOLDER_WALK_H_
#define KELVA_APPS_CAMERA_FOLDER_WALK_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "apps/commandline/Context.h"
#include "src/wifi/Camera.h"

namespace apps {

/// Lists folders of a camera and all below them, one after the other. Depth and number are bounded, since a camera chooses
/// both and may lead round in circles.
class FolderWalk {
 public:
  struct Listing {
    std::string folder;               ///< the camera's path
    std::vector<CameraDirent> files;  ///< what is in it, but for folders and the volume's label
  };
  static constexpr std::size_t kDeepest = 16;
  static constexpr std::size_t kMostFolders = 10'000;

  /// Context and camera outlive this.
  FolderWalk(Context& context, Camera& camera, const std::vector<std::string>& roots);

  /// Lists the next folder. Nothing at the end. Throws Stopped, and as ListFolder does; the next call then goes on behind that
  /// folder.
  std::optional<Listing> Next();
  /// The folder that Next listed last, or failed to list.
  const std::string& Folder() const { return folder_; }
  /// Whether folders were left out because of a bound.
  bool IsCut() const { return isCut_; }

 private:
  struct Place {
    std::string path;
    std::size_t depth;
  };

  Context& context_;
  Camera& camera_;
  std::vector<Place> places_;  // to be listed, the next one last
  std::size_t found_ = 0;
  std::string folder_;
  bool isCut_ = false;
};

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_FOLDER_WALK_H_

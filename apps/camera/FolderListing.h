#ifndef KELVA_APPS_CAMERA_FOLDER_LISTING_H_
#define KELVA_APPS_CAMERA_FOLDER_LISTING_H_

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "src/wifi/Camera.h"

namespace apps {

/// The largest listing of one folder that the tool reads: some fifty times that of a full folder of pictures.
inline constexpr std::size_t kLargestListing = std::size_t{16} << 20;

/// As Camera::ReadDir, within a bound. Throws CameraError when the listing goes on after kLargestListing.
std::vector<CameraDirent> ListFolder(Camera& camera, const std::string& path);

/// Listings of the folders last asked about, each read once. For many questions in one turn with the camera.
class KnownListings {
 public:
  explicit KnownListings(Camera& camera) : camera_(camera) {}

  /// As ListFolder. Valid until the next call.
  const std::vector<CameraDirent>& Of(const std::string& folder) { return Read(folder).entries; }
  /// As FindEntry.
  std::optional<CameraDirent> Find(std::string_view cameraPath);
  /// The camera was given up meanwhile, so another program may have changed what is on it.
  void Forget() { folders_.clear(); }
  Camera& From() const { return camera_; }

 private:
  struct Folder {
    std::vector<CameraDirent> entries;
    std::multimap<std::string, std::size_t> byName;  ///< places in `entries`, by name in small letters
  };

  const Folder& Read(const std::string& path);

  Camera& camera_;
  std::map<std::string, Folder> folders_;
};

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_FOLDER_LISTING_H_

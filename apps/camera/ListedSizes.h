#ifndef KELVA_APPS_CAMERA_LISTED_SIZES_H_
#define KELVA_APPS_CAMERA_LISTED_SIZES_H_

#include <list>
#include <map>
#include <optional>
#include <string>

#include "src/wifi/Camera.h"

namespace apps {

/// The sizes of the files in a folder, by name in small letters: cameras ignore the case of ASCII letters.
using SizesByName = std::map<std::string, unsigned long long>;
SizesByName ReadSizes(Camera& camera, const std::string& folder);

/// The sizes of files as their folders list them. Keeps the listings of the last few folders: files in catalogue order
/// cost one listing for each folder, also where the order goes back and forth between some folders.
class ListedSizes {
 public:
  explicit ListedSizes(Camera& camera) : camera_(camera) {}

  /// Whether the folder lists the file with this size. When it does not, lists the folder again, since the file may
  /// have grown. Nothing when the folder does not list the file. Throws as ListFolder does.
  std::optional<bool> Agrees(const std::string& cameraPath, unsigned long long size);
  /// The size with which the folder lists a file, as far as it is known: nothing when the folder does not list the file
  /// or cannot be listed.
  std::optional<unsigned long long> SizeOf(const std::string& cameraPath);
  /// The listed size of the file last asked about; 0 when the folder does not list it.
  unsigned long long Listed() const { return listed_; }

 private:
  struct Folder {
    std::string path;
    SizesByName sizes;
  };

  bool LookUp(const std::string& name);
  /// Puts a folder whose listing is kept in front. False when it is not kept.
  bool Recall(const std::string& path);
  /// Lists a folder and puts it in front.
  void Read(const std::string& path);
  void Keep(Folder folder);

  Camera& camera_;
  std::list<Folder> folders_;  // the one last asked for is in front
  unsigned long long listed_ = 0;
};

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_LISTED_SIZES_H_

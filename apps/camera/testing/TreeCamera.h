#ifndef KELVA_APPS_CAMERA_TESTING_TREE_CAMERA_H_
#define KELVA_APPS_CAMERA_TESTING_TREE_CAMERA_H_

#include <map>
#include <string>
#include <vector>

#include "apps/camera/testing/FakeCamera.h"
#include "src/wifi/CameraError.h"

namespace apps {

/// A camera for tests with files in several folders. Their contents are found by their last names.
class TreeCamera : public FakeCamera {
 public:
  std::vector<CameraDirent> ReadDir(const char* path) override {
    if (unlisted == path) throw CameraError("not listed");
    std::vector<CameraDirent> entries = {{".", 0, 0x10}, {"..", 0, 0x10}, {"LABEL", 0, 0x08}};
    for (const CameraDirent& entry : tree[path]) entries.push_back(entry);
    return entries;
  }
  void AddFolder(const std::string& parent, const std::string& name) { tree[parent].push_back({name, 0, 0x10}); }
  void AddFile(const std::string& parent, const std::string& name, const std::string& text) {
    tree[parent].push_back({name, static_cast<int>(text.size()), 0x20});
    files[name] = text;
  }

  std::map<std::string, std::vector<CameraDirent>> tree;
  std::string unlisted;  ///< this folder cannot be listed
};

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_TESTING_TREE_CAMERA_H_

#ifndef KELVA_UI_LINUX_KELVA_HELPER_OPENER_FOLDER_VIEWER_H_
#define KELVA_UI_LINUX_KELVA_HELPER_OPENER_FOLDER_VIEWER_H_

#include <gio/gio.h>

#include <string>

#include "src/ui/linux/KelvaHelper/opener/GObjects.h"

namespace opener {

/// The content type for which programs that take pictures from a camera's card register, and that of every folder.
inline constexpr char kCameraCard[] = "x-content/image-dcf";
inline constexpr char kFolder[] = "inode/directory";

/// The program that this user opens things of a content type with.
class FolderViewer {
 public:
  /// False when no installed program is for this type.
  explicit FolderViewer(const char* contentType);
  explicit operator bool() const { return static_cast<bool>(info_); }

  /// The name that people know it by, and that of its desktop entry without ".desktop". Only for one that was found.
  std::string Name() const;
  std::string Id() const;
  /// Starts it on the folder `path` and does not wait for it. Returns an empty text, or the reason why it did not start.
  std::string Open(const std::string& path) const;

 private:
  Object<GAppInfo> info_;
};

}  // namespace opener

#endif  // KELVA_UI_LINUX_KELVA_HELPER_OPENER_FOLDER_VIEWER_H_

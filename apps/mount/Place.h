#ifndef KELVA_APPS_MOUNT_PLACE_H_
#define KELVA_APPS_MOUNT_PLACE_H_

#include <optional>
#include <string>

namespace apps {

/// The folder on which a camera is mounted. Made when it is missing; the destructor then removes it again.
class Place {
 public:
  /// The folder that a person named, otherwise "Kelva SERIAL" in the home folder. Throws Failure when there is something in
  /// it, when it is no folder, or a mount already, and without a home folder.
  Place(const std::optional<std::string>& named, const std::string& serial);
  ~Place();
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;

  /// Absolute.
  const std::string& Path() const { return path_; }
  bool IsMade() const { return isMade_; }

 private:
  std::string path_;
  bool isMade_ = false;
};

/// Ends a mount at once; whoever has its files open keeps them. Returns when it is out of the tree. False when that failed.
bool UnmountLazily(const std::string& path);

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_PLACE_H_

#ifndef KELVA_APPS_IMPORT_CAMERA_FILES_H_
#define KELVA_APPS_IMPORT_CAMERA_FILES_H_

#include <boost/shared_ptr.hpp>
#include <optional>
#include <utility>

#include "apps/camera/ListedSizes.h"
#include "apps/import/Plan.h"
#include "src/wifi/Camera.h"
#include "src/wifi/FileReader.h"

namespace apps {

/// Opens files of a plan on their camera. What the camera announces must agree with what is known of a file: no file is
/// read without end, and an empty one may stand for one that is missing. Belongs to the thread that reads.
class CameraFiles {
 public:
  explicit CameraFiles(boost::shared_ptr<Camera> camera) : camera_(std::move(camera)), listed_(*camera_) {}

  const boost::shared_ptr<Camera>& Pointer() const { return camera_; }
  /// Selects a file. Throws CameraError: also when its folder gives it another size and the catalogue has no key for it.
  kelva::FileReader Open(const SyncItem& item);
  /// As ListedSizes::SizeOf. Ends the selection.
  std::optional<unsigned long long> ListedSize(const SyncItem& item) { return listed_.SizeOf(item.CameraPath()); }
  /// Of a file whose SHA-1 is not its key, so that its size alone can tell. Throws CameraError when its folder gives it
  /// another size. Ends the selection.
  void CheckUnlikeKey(const SyncItem& item, unsigned long long size);

 private:
  kelva::FileReader OpenOther(const OtherFile& file) const;
  void CheckSize(const SyncItem& item, unsigned long long announced);

  const boost::shared_ptr<Camera> camera_;
  ListedSizes listed_;
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_CAMERA_FILES_H_

#ifndef KELVA_APPS_IMPORT_DELETIONS_H_
#define KELVA_APPS_IMPORT_DELETIONS_H_

#include <chrono>
#include <string>
#include <vector>

#include "apps/files/TargetFolder.h"
#include "apps/import/Manifest.h"
#include "apps/import/Plan.h"
#include "src/wifi/Camera.h"

namespace apps {

/// Deletes files on a camera that are on disk here, and remembers it in the manifest: in groups, because each entry on
/// its own costs four flushes of the disk. A group that a killed process did not write costs nothing but its marks: the
/// files are no longer in the camera's catalogue.
class Deletions {
 public:
  /// All outlive this.
  Deletions(Camera& camera, const TargetFolder& folder, Manifest& manifest)
      : camera_(camera), folder_(folder), manifest_(manifest) {}
  /// Writes the last group as far as it can.
  ~Deletions();
  Deletions(const Deletions&) = delete;
  Deletions& operator=(const Deletions&) = delete;

  /// Deletes one file. Returns why it was left on the camera: a sentence, empty when it was deleted. Throws CameraError,
  /// and Failure of the manifest.
  std::string Delete(const SyncItem& item);
  /// Writes the last group. Throws Failure.
  void Finish();

 private:
  using Clock = std::chrono::steady_clock;

  std::string WhyNot(const SyncItem& item);

  Camera& camera_;
  const TargetFolder& folder_;
  Manifest& manifest_;
  std::vector<ManifestKey> unmarked_;
  Clock::time_point lastGroup_ = Clock::now();
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_DELETIONS_H_

#ifndef KELVA_APPS_IMPORT_SYNC_WORK_H_
#define KELVA_APPS_IMPORT_SYNC_WORK_H_

#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/commandline/Context.h"
#include "apps/commandline/Progress.h"
#include "apps/import/CameraFiles.h"
#include "apps/import/PictureTimes.h"
#include "apps/import/Plan.h"
#include "apps/import/SyncReport.h"
#include "apps/import/Writers.h"
#include "src/wifi/Camera.h"

namespace apps {

struct SyncOptions {
  bool verify = false;       ///< read each new file twice
  bool deleteAfter = false;  ///< delete on the camera what is on disk, and is as its key says or is read once more
};

/// What the parts of one sync share: the camera's files, what was asked for, what is reported. Belongs to the thread that
/// reads.
class SyncWork {
 public:
  /// `times` may be null. All outlive this.
  SyncWork(Context& of, boost::shared_ptr<Camera> camera, SyncOptions asked, PictureTimes* pictureTimes)
      : context(of),
        options(asked),
        times(pictureTimes),
        files(std::move(camera)),
        report(of),
        progress_(of.reporter, of.stop, "", 0) {}

  Context& context;
  const SyncOptions options;
  PictureTimes* const times;
  CameraFiles files;
  SyncReport report;

  using Each = std::function<void(const SyncItem&)>;
  struct Pass {
    std::string_view phase;        ///< for the progress: "deleting"
    std::string_view verb;         ///< for sentences: "delete"
    Each before = nullptr;         ///< in place of LetOthers, before each file
    unsigned long long bytes = 0;  ///< that are to come; 0 when unknown
  };
  /// Does `work` for one file after the other. A file that fails is reported, and the rest goes on. Throws what ends all:
  /// CameraError of a camera that has gone, Failure, Stopped.
  void ForEach(const std::vector<const SyncItem*>& items, const Pass& pass, const Each& work);
  /// The same for one file.
  void Try(const SyncItem& item, const std::function<void()>& work);

  /// The SHA-1 of a file as the camera sends it now. Throws CameraError, Stopped.
  std::string HashOnCamera(const SyncItem& item);
  /// Bytes that came, for the progress. Throws Stopped.
  void Came(std::size_t bytes);
  /// The same; they are shown with the next file.
  void CameBefore(std::size_t bytes) { bytes_ += bytes; }
  /// What comes now of this file came before: the progress says "comparing".
  void ShowComparing() { progress_.Now("comparing"); }
  /// Takes the progress away.
  void Clear() { progress_.Clear(); }

 private:
  void Show(const Pass& pass, std::size_t done, std::size_t count, const SyncItem& item);

  Progress progress_;
  unsigned long long bytes_ = 0;  // of this pass
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_SYNC_WORK_H_

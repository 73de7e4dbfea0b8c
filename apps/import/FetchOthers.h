#ifndef KELVA_APPS_IMPORT_FETCH_OTHERS_H_
#define KELVA_APPS_IMPORT_FETCH_OTHERS_H_

#include <boost/shared_ptr.hpp>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "apps/camera/Explain.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Progress.h"
#include "apps/import/CutFiles.h"
#include "apps/import/Folders.h"
#include "apps/import/Manifest.h"
#include "apps/import/Others.h"
#include "apps/import/SyncTally.h"
#include "apps/import/SyncWork.h"
#include "src/wifi/Camera.h"
#include "src/wifi/FileReader.h"

namespace apps {

/// Fetches files that are not in the catalogue, one after the other: under a temporary name first, in pieces, so that
/// memory does not depend on their size. A file that fails is reported and the rest goes on. Each is in the manifest as
/// soon as it has its name.
class FetchOthers {
 public:
  /// All outlive this.
  FetchOthers(Context& context, boost::shared_ptr<Camera> camera, std::string serial, const TargetFolder& folder,
              Manifest& manifest, const CutFiles& cuts, SyncOptions options, SyncTally& tally);

  /// As Sync::Run, deletions included: a file goes on the camera when it was read twice, equal, and is on disk here.
  std::optional<Outcome> Run(const OtherFiles& files);

 private:
  using Take = std::function<void(std::uint64_t at, std::span<const char> bytes)>;

  void ForEach(const std::vector<OtherFile>& files, const std::string& phase,
               const std::function<void(const OtherFile&)>& work);
  bool LeaveOut(const OtherFile& file);
  void Fetch(const OtherFile& file);
  bool Delete(const OtherFile& file);
  std::string HashOnCamera(const OtherFile& file);
  std::string WhyNotDelete(const OtherFile& file);
  void MarkDeleted();
  kelva::FileReader Open(const OtherFile& file);
  void Read(kelva::FileReader& reader, const Take& take);
  void Record(const OtherFile& file, const Stored& stored, const std::string& sha1);
  void Fail(const OtherFile& file, const std::string& sentence);

  Context& context_;
  const boost::shared_ptr<Camera> camera_;
  const std::string serial_;
  const TargetFolder& folder_;
  Manifest& manifest_;
  const SyncOptions options_;
  SyncTally& tally_;
  Folders folders_;
  Progress progress_;
  unsigned long long readBytes_ = 0;
  std::vector<OtherFile> stored_;
  std::vector<ManifestKey> unmarked_;
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_FETCH_OTHERS_H_

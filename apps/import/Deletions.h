#ifndef KELVA_APPS_IMPORT_DELETIONS_H_
#define KELVA_APPS_IMPORT_DELETIONS_H_

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "apps/camera/ListedSizes.h"
#include "apps/files/TargetFolder.h"
#include "apps/import/Manifest.h"
#include "apps/import/Plan.h"
#include "src/wifi/Camera.h"

namespace apps {

/// What lies where a file was stored.
enum class StoredState : std::uint8_t { kSame, kEdited, kGone, kNoFile, kUnreadable };
StoredState StateOf(const ManifestRow& row, const TargetFolder& folder);

/// Deletes files on a camera that are on disk here, or were let go. What was checked is what is deleted: in one and the same turn with the
/// camera, its catalogue and the listed sizes are compared with what was fetched, and a file whose SHA-1 is not its key is
/// read once more.
///
/// It is remembered in the manifest in groups, because each entry on its own costs four flushes of the disk. A group
/// that a killed process did not write costs nothing but its marks: the files are no longer in the camera's catalogue.
class Deletions {
 public:
  /// Reads a file on the camera once more and gives its SHA-1.
  using Hash = std::function<std::string(const SyncItem&)>;

  /// All outlive this.
  Deletions(Camera& camera, const TargetFolder& folder, Manifest& manifest, Hash hash)
      : camera_(camera), folder_(folder), manifest_(manifest), hash_(std::move(hash)) {}
  /// Writes the last group as far as it can.
  ~Deletions();
  Deletions(const Deletions&) = delete;
  Deletions& operator=(const Deletions&) = delete;

  /// The files that come next, in their order. Their rows are looked up in groups, because each look on its own locks the
  /// manifest. The pointers outlive this.
  void Expect(std::span<const SyncItem* const> items) { expected_ = items; }
  /// The camera was given up meanwhile, so another program may have changed what is on it. Between two pictures only: what
  /// is deleted changes the entry of its picture.
  void Renew();
  /// Deletes one file. Returns why it was left on the camera: a sentence, empty when it was deleted. Throws CameraError,
  /// and Failure of the manifest.
  std::string Delete(const SyncItem& item);
  /// Writes the last group. Throws Failure.
  void Finish();

 private:
  using Clock = std::chrono::steady_clock;

  std::optional<ManifestRow> RowOf(const SyncItem& item);
  void LookUpFrom(const SyncItem& item);
  std::string WhyNotHere(const SyncItem& item, const std::optional<ManifestRow>& row) const;
  bool IsAsFetched(const SyncItem& item, const ManifestRow& row);

  Camera& camera_;
  const TargetFolder& folder_;
  Manifest& manifest_;
  const Hash hash_;
  std::optional<std::map<std::string, DcfObj>> catalogue_;  // of this turn, by the bytes that identify a picture
  std::optional<ListedSizes> sizes_;                        // of this turn
  std::span<const SyncItem* const> expected_;
  std::deque<std::pair<const SyncItem*, std::optional<ManifestRow>>> rows_;  // of the next ones
  std::vector<ManifestKey> unmarked_;
  Clock::time_point lastGroup_ = Clock::now();
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_DELETIONS_H_

#ifndef KELVA_APPS_CAMERA_REMOTE_FILE_H_
#define KELVA_APPS_CAMERA_REMOTE_FILE_H_

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "apps/camera/FolderListing.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Progress.h"
#include "src/wifi/Camera.h"
#include "src/wifi/FileReader.h"
#include "src/wifi/FileWriter.h"

namespace apps {

/// A file's entry in the listing of its folder. Throws Failure for a missing file or folder, and for a path of a folder.
CameraDirent FileEntry(Camera& camera, const std::string& path);
CameraDirent FileEntry(KnownListings& listings, const std::string& path);

/// The largest file that the interface of a camera can name.
inline constexpr std::uint32_t kLargestFile = 0xFFFFFFFF;

/// A file of a camera, found and about to be read. Memory does not depend on its size.
class RemoteFile {
 public:
  /// Uses the listing of its folder to tell an empty file from a missing one, and looks once more at a file that changed
  /// meanwhile. Throws Failure for a missing file, a folder, or a file that keeps changing. No command may come between
  /// this and Read. `listed` is the size that the caller has just found in the listing.
  RemoteFile(Context& context, boost::shared_ptr<Camera> camera, std::string path,
             std::optional<unsigned long long> listed = std::nullopt);

  unsigned long long Size() const { return reader_ ? reader_->Size() : 0; }

  using Take = std::function<void(std::span<const char>)>;
  /// Hands all bytes to `take`, in order, in pieces of 64 KiB, and shows the progress. The bytes are valid during the call
  /// only. Throws CameraError, Stopped, and what `take` throws.
  void Read(const Take& take);
  /// The same as a part of more work, of which `before` bytes are done.
  void Read(Progress& progress, unsigned long long before, const Take& take);

 private:
  Context& context_;
  const std::string path_;
  std::optional<kelva::FileReader> reader_;  ///< nothing: the file is empty
};

/// The SHA-1 of a whole file of a camera, as Sha1. `came` is told of each piece by its number of bytes. Throws CameraError,
/// and what `came` throws.
std::string Sha1OfRemote(kelva::FileReader& reader, const std::function<void(std::size_t)>& came);

/// Writes a file of `size` bytes, reads it back and compares, because a camera does not report failures. Throws Failure
/// when the bytes differ. Deletes the file when the write is stopped half-way, also by an exception of `source`.
void WriteRemoteFile(Context& context, const boost::shared_ptr<Camera>& camera, const std::string& path,
                     std::uint32_t size, const kelva::ByteSource& source);

/// Deletes files. In one turn with the camera, each folder is listed once before its files go and once after all are gone,
/// however many they are.
class RemoteDeletions {
 public:
  explicit RemoteDeletions(Camera& camera) : before_(camera), after_(camera) {}

  /// The camera was given up meanwhile, so another program may have changed what is on it.
  void Renew();
  /// Throws Failure for a missing file, a folder, or a refusal.
  void Delete(const std::string& path);
  /// For a deleted file, after the last Delete. Throws Failure for a file that is still listed.
  void CheckGone(const std::string& path);

 private:
  KnownListings before_;
  KnownListings after_;
};

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_REMOTE_FILE_H_

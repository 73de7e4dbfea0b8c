#ifndef KELVA_WIFI_FILE_READER_H_
#define KELVA_WIFI_FILE_READER_H_

#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "Camera.h"
#include "CameraError.h"

namespace kelva {

/// Why a FileReader gave up. Thrown whatever `Camera::throwExceptions_` says. A transfer that fails throws
/// `CameraTransferError` instead, as everywhere.
class FileReadError : public CameraError {
 public:
  enum class Reason {
    kNotOpen,      ///< the camera's session is not open; nothing was sent
    kCameraLost,   ///< the camera has gone (Camera::WasDisconnected); nothing was sent
    kNoSuchType,   ///< the picture has no file of that type; nothing was sent
    kNotSelected,  ///< an earlier error ended the selection, and Select() was not called since; nothing was sent
    kRefused,      ///< the transport reported failure without an exception
    kTruncated,    ///< fewer bytes came than the camera announced
    kSurplus,      ///< two or more bytes came beyond the announced size, or more than were asked for
    kSizeChanged,  ///< Select() found another size than the reader began with
  };

  FileReadError(Reason reason, const std::string& message);
  // Out of line, so that one shared library holds the type's identity and every program that uses it can catch it.
  ~FileReadError() override;

  Reason Why() const { return reason_; }

 private:
  Reason reason_;
};

/// Reads a file of a camera piece by piece: from the start, or any part of it. Memory does not depend on its size.
///
///     kelva::FileReader reader(camera, "I:\\DCIM\\100ABCDE\\IMG_0001.JPG");
///     std::vector<char> piece(65536);
///     while (const std::size_t count = reader.ReadOn(piece)) Save(std::span(piece).first(count));
///
/// **Another command on this camera ends the selection**, and so do a second reader of the same camera and a session
/// that was closed: the camera knows one selected data set. The reader cannot see that, and a camera that is asked
/// nevertheless may send bytes of something else. Call Select() before the next read; it takes the file up again, and
/// ReadOn() then goes on where the last read ended.
///
/// Order: any part may be read, in any order. Whether a camera honours the offset of a read is asked before the first
/// read that does not follow the one before it (and is not at 0), once per camera object and process, with a few reads
/// in the file's first 64 KiB. A file that is too small or too uniform leaves the question open for the next reader, and
/// so does an error during the proof. A camera without that proof is read forward only: skipping ahead reads and drops, going
/// back selects the file anew and reads from its start. Reading forward asks nothing.
///
/// A chunk is as large as the camera's transport allows, 65,536 bytes on macOS and Linux; a larger `into` takes several.
///
/// Ownership: the reader holds the camera. The camera's bytes land in the caller's memory; the reader keeps none of them
/// and allocates nothing per read. What it needs for itself, 64 KiB, it allocates when it first asks for the proof or skips.
///
/// Threads: as for a camera, one at a time. A reader belongs to the thread of its camera.
///
/// Errors: FileReadError, CameraTransferError. Both end the selection: call Select() before the next read. After the
/// camera was lost every call but Size(), Position() and the destructor throws.
class FileReader {
 public:
  /// Selects the file and asks its size: two commands. The camera's session is open; the path is in the camera's own
  /// syntax. The size of an empty file and of a missing one is 0.
  FileReader(boost::shared_ptr<Camera> camera, const std::string& path);
  /// One of a picture's files: 1 "JPG", 2 "RAW", 3 "TXT", 4 "128". The path follows the rule of Camera::ReadFile.
  FileReader(boost::shared_ptr<Camera> camera, const DcfObj& picture, int type);
  /// Sends nothing: reading has no closing command.
  ~FileReader();
  /// `other` may then only be assigned to or destroyed.
  FileReader(FileReader&& other) noexcept;
  FileReader& operator=(FileReader&& other) noexcept;

  /// Takes the file up again, after another command ended the selection or after an error: two commands. Position()
  /// stays. Throws FileReadError kSizeChanged when the file has another size now; make a new reader then.
  void Select();

  /// The bytes of the file, as the camera announced them: 0 to 2^32 - 1.
  std::uint64_t Size() const;

  /// Fills `into` with the file's bytes from `offset` on. Returns how many: fewer than asked for only at the end of the
  /// file, 0 at the end and behind it. The memory behind them may hold anything. A read that reaches the end also checks
  /// that the camera has no more: it cuts one surplus byte off and throws for two. That costs one command more, unless
  /// `into` has room for two bytes beyond the end and the last chunk is not full.
  std::size_t Read(std::uint64_t offset, std::span<char> into);

  /// Read() from Position() on.
  std::size_t ReadOn(std::span<char> into);

  /// Where ReadOn() goes on: behind the last byte that was read. After an error: behind the last byte that arrived in
  /// good order, so a caller may keep what is before it.
  std::uint64_t Position() const;

  /// True when this file is read forward only. Asks the camera when that is not known yet, so it is a read itself: on a
  /// camera that is read forward only, ask before the first read, or the file is read from its start again.
  bool ReadsForwardOnly();

 private:
  class Core;
  std::unique_ptr<Core> core_;
};

}  // namespace kelva

#endif  // KELVA_WIFI_FILE_READER_H_

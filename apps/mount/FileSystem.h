#ifndef KELVA_APPS_MOUNT_FILE_SYSTEM_H_
#define KELVA_APPS_MOUNT_FILE_SYSTEM_H_

#include <fuse3/fuse_lowlevel.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "apps/camera/Attached.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Context.h"
#include "apps/mount/ExifTimes.h"
#include "apps/mount/Nodes.h"
#include "apps/mount/Pending.h"
#include "apps/mount/Pieces.h"
#include "apps/mount/Reading.h"
#include "apps/mount/ShownFolder.h"
#include "apps/mount/Spool.h"
#include "apps/mount/Times.h"
#include "apps/mount/Work.h"
#include "apps/thumbnails/Thumbnailer.h"

namespace apps {

/// How long the kernel may believe what it was told. Another program may change what is on the camera.
inline constexpr double kSecondsValid = 1;

/// A camera's storage as a file system. The kernel's requests come on one thread, which never waits for the camera: what is
/// known is answered there, the rest is work for the camera's thread (Serve).
class FileSystem {
 public:
  struct Events {
    /// The camera has gone. Any thread.
    std::function<void()> gone;
    /// The camera sends files forward only. The camera's thread.
    std::function<void()> forwardOnly;
    /// No picture can be looked into, and why: a sentence. The camera's thread, once.
    std::function<void(const std::string& reason)> noDates;
    /// Answer has something to do. The camera's thread.
    std::function<void()> toAnswer;
  };

  FileSystem(bool writable, Events events);

  // The kernel's requests. Each is answered once.
  void Lookup(fuse_req_t request, std::uint64_t parent, const std::string& name);
  void Forget(std::uint64_t number, std::uint64_t count);
  void GetAttributes(fuse_req_t request, std::uint64_t number);
  void Open(fuse_req_t request, std::uint64_t number, const fuse_file_info& info);
  void Read(fuse_req_t request, std::uint64_t number, std::uint64_t offset, std::size_t size);
  void OpenFolder(fuse_req_t request, std::uint64_t number, const fuse_file_info& info);
  void ReadFolder(fuse_req_t request, std::uint64_t number, std::uint64_t offset, std::size_t size,
                  const fuse_file_info& info, bool withAttributes);
  static void CloseFolder(fuse_req_t request, const fuse_file_info& info);
  /// Answers the reads whose bytes have come. Copying them to the kernel here leaves the camera's thread to the camera.
  void Answer();
  // The same of a mount that may be written to.
  void SetAttributes(fuse_req_t request, std::uint64_t number, const struct stat& wanted, int which);
  void Create(fuse_req_t request, std::uint64_t parent, const std::string& name, const fuse_file_info& info);
  void Write(fuse_req_t request, std::uint64_t number, std::uint64_t offset, std::span<const char> bytes);
  void Flush(fuse_req_t request, std::uint64_t number);
  void Close(fuse_req_t request, std::uint64_t number, const fuse_file_info& info);
  void Remove(fuse_req_t request, std::uint64_t parent, const std::string& name);

  bool IsWritable() const { return writable_; }
  /// With which errno the mount has ended; 0 as long as it has not. Any thread.
  int Ended() const { return ended_.load(); }

  /// Works for the kernel until End. Opens the camera first, then calls `opened`. Throws what opening throws; later failures
  /// are the kernel's answers. The camera's thread.
  void Serve(Context& context, AttachedCamera chosen, const std::function<void()>& opened);
  /// How long the camera has been silent while something was asked of it; 0 when nothing is. Any thread.
  std::chrono::milliseconds Silence() const;
  /// Answers everything that waits, and all that comes, with this errno. Any thread.
  void End(int error);

 private:
  using Clock = std::chrono::steady_clock;
  using Folder = std::shared_ptr<const ShownFolder>;
  struct Listing {
    Folder folder;
    Clock::time_point came;
    Clock::duration valid;
  };
  /// How a file is read, for reading ahead.
  struct Stream {
    std::uint64_t next = 0;   ///< behind what was asked for last
    std::uint64_t ahead = 0;  ///< the first piece that is not read ahead any more
    std::uint64_t used = 0;
  };
  /// A read whose bytes are here.
  struct Answered {
    Pending::Ticket ticket;
    std::vector<Pieces::Piece> pieces;
    std::uint64_t offset;
    std::size_t size;
  };
  /// A file that is being written, until its last close.
  struct Upload {
    Spool spool;
    unsigned opens = 1;
    bool isSent = false;
    std::atomic<bool> isRemoved = false;  ///< deleted while it was open
    /// Otherwise it is sent with the last close: a shell closes a new file once before it writes.
    bool isWritten = false;
  };

  struct stat AttributesOf(std::uint64_t number, const Node& node) const;
  fuse_entry_param EntryOf(std::uint64_t number, const Node& node) const;
  Folder Fresh(std::uint64_t number);
  Folder Current(std::uint64_t number);
  void WithFolder(fuse_req_t request, std::uint64_t number,
                  std::function<void(Pending::Ticket, const Folder& folder)> then);
  void Put(Pending::Ticket ticket, std::uint64_t file, std::uint64_t offset, std::function<void()> run);
  std::string PathOf(std::uint64_t number);
  std::uint64_t Tell(std::uint64_t parent, const ShownEntry& entry, std::time_t changed);
  void Told(Pending::Ticket ticket, std::uint64_t parent, const ShownEntry& entry, std::time_t changed);
  void Found(Pending::Ticket ticket, std::uint64_t parent, const Folder& folder, const ShownEntry& entry);
  std::optional<std::time_t> TimeOf(const std::string& path, const ShownFolder& folder, const ShownEntry& entry) const;
  std::uint64_t LookInto(std::uint64_t parent, const ShownEntry& jpeg);
  std::time_t ExifTimeIn(const FileBytes& start);
  void Changed(std::uint64_t folder);

  Pieces::Piece Known(std::uint64_t number, std::uint64_t index);
  bool ReadKnown(Pending::Ticket ticket, std::uint64_t number, std::uint64_t offset, std::size_t size);
  void ReadNow(Pending::Ticket ticket, std::uint64_t number, std::uint64_t offset, std::size_t size);
  Pieces::Piece PieceNow(std::uint64_t number, std::uint64_t index);
  void Follow(std::uint64_t number, std::uint64_t offset, std::uint64_t end, std::uint64_t size);
  bool ReadAhead();

  void Heard();
  std::optional<Job> NextJob();
  void Do(const Job& job);
  void Idle();
  void FailAll(const std::exception& error);
  int ErrorOf(const std::exception& error);
  std::shared_ptr<Upload> UploadOf(std::uint64_t number);
  std::shared_ptr<Upload> UploadAt(std::uint64_t parent, const std::string& name);
  bool JoinUpload(std::uint64_t number);
  void StartUpload(std::uint64_t number);
  void Send(std::uint64_t number, Upload& upload);
  void RemoveNow(std::uint64_t parent, const std::string& name);

  const bool writable_;
  const Events events_;
  const std::time_t undated_;
  std::atomic<int> ended_ = 0;
  std::atomic<Clock::rep> heard_ = 0;  // when the camera answered last; 0 while nothing is asked of it
  Pending pending_;
  Work work_;

  std::mutex mutex_;  // what follows, up to the camera's own
  Nodes nodes_;
  Pieces pieces_;
  std::map<std::uint64_t, Listing> listings_;
  std::map<std::uint64_t, Stream> streams_;
  std::vector<Answered> answered_;
  std::map<std::uint64_t, std::shared_ptr<Upload>> uploads_;
  std::uint64_t uses_ = 0;
  ExifTimes exifTimes_;
  bool looksIntoPictures_ = true;

  // The camera's thread.
  Context* context_ = nullptr;
  Session* session_ = nullptr;
  std::unique_ptr<Reading> reading_;
  Times times_;
  std::optional<Thumbnailer> thumbnailer_;  // while there is work
  bool isOpen_ = false;
  unsigned inARow_ = 0;          // requests of the selected file that were answered before those of others
  std::uint64_t readAhead_ = 0;  // pieces of it, likewise
};

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_FILE_SYSTEM_H_

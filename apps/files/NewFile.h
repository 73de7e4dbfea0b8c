#ifndef KELVA_APPS_FILES_NEW_FILE_H_
#define KELVA_APPS_FILES_NEW_FILE_H_

#include <ctime>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "apps/commandline/Scratch.h"
#include "apps/files/TargetFolder.h"
#include "base/FileDescriptor.h"

namespace apps {

/// Temporary names start and end with these.
inline constexpr std::string_view kTemporaryStart = ".kelva-";
inline constexpr std::string_view kTemporaryEnd = ".part";

/// Who may read a file once it has its name.
enum class Readers {
  kUsual,  ///< as the system has it for new files of the folder
  kOwner,
};

/// A file that is being written under a temporary name and gets its final name only when it is whole and on disk. Until then
/// its owner alone can open it: who can read a file can lock it, or read it before it is known to be right.
/// Destroyed before that, or with the process (an abort included), it leaves nothing behind, unless it is to be kept. A lock
/// (flock) tells a later run that a temporary file is still in use.
class NewFile {
 public:
  /// `folder` outlives the file. Throws Failure.
  explicit NewFile(const TargetFolder& folder, Readers readers = Readers::kUsual);
  /// Takes a file up again that was kept under this temporary name; writing goes on at its end. Nothing when it is not
  /// there, is no plain file, or is in use. It stays kept. `folder` outlives the file.
  static std::unique_ptr<NewFile> TakeUp(const TargetFolder& folder, const std::string& temporary);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  /// Throws Failure, a full disk included. The disk begins to take the bytes each time that eight more megabytes are
  /// written, so that a large file does not wait for all of them at its end.
  void Write(std::span<const char> bytes);
  const std::string& TemporaryName() const { return temporary_; }
  /// Its bytes until now. Throws Failure.
  unsigned long long Size() const;
  /// From here on the file stays under its temporary name, whatever ends this object or the process.
  void Keep();
  /// Takes Keep back.
  void Drop() { kept_ = false; }
  /// Hands all bytes to `take`, in pieces. Throws Failure.
  void ReadBack(const std::function<void(std::span<const char>)>& take) const;
  /// Whether these bytes are in the file at `offset`. Throws Failure when they cannot be read.
  bool HoldsAt(unsigned long long offset, std::span<const char> bytes) const;
  /// Gives the file the time of its last change; after the last Write. A file system that keeps no such times, or not
  /// this one, leaves the file as it is. Throws Failure.
  void SetTime(std::time_t changed);
  /// Starts to put the bytes on disk and does not wait, so that a later Flush is shorter.
  void BeginFlush() noexcept;
  /// Puts the bytes on disk. Throws Failure.
  void Flush();
  /// Gives the file its name; false when the name is taken, which is then left as it is. Throws Failure.
  bool TakeName(const std::string& name);
  /// As TakeName, but replaces what has the name.
  void ReplaceName(const std::string& name);

 private:
  NewFile(const TargetFolder& folder, std::string temporary, base::FileDescriptor file);
  std::size_t ReadAt(unsigned long long offset, std::span<char> into) const;
  bool Claim() const;
  bool Rename(const std::string& name, bool replace);

  const TargetFolder& folder_;
  const Readers readers_;
  std::string temporary_;
  std::optional<ScratchRecord> record_;
  base::FileDescriptor file_;
  std::size_t unflushed_ = 0;
  bool named_ = false;
  bool kept_ = false;
};

/// Removes the temporary files that earlier processes left behind (killed, or the power went), except those in use
/// those of other users, and those for which `keeps` is true. Returns how many.
int RemoveLeftovers(const TargetFolder& folder, const std::function<bool(const std::string& name)>& keeps = nullptr);

}  // namespace apps

#endif  // KELVA_APPS_FILES_NEW_FILE_H_

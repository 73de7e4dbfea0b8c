#ifndef KELVA_APPS_FILES_FILE_CALLS_H_
#define KELVA_APPS_FILES_FILE_CALLS_H_

#include <sys/types.h>

#include <cerrno>
#include <ctime>
#include <functional>
#include <string>
#include <string_view>

namespace apps {

/// The calls on which the safety of a user's files rests, and no others. A test puts its own in their place, which record
/// their order and fail on request. Each returns what its system call returns: on failure -1, with errno set; a signal
/// may interrupt it (EINTR). Any thread.
class FileCalls {
 public:
  FileCalls() = default;
  virtual ~FileCalls() = default;
  FileCalls(const FileCalls&) = delete;
  FileCalls& operator=(const FileCalls&) = delete;

  /// Opens what exists below `folder`. No component of `path` leads out of the folder or through a symbolic link. The
  /// descriptor is closed on exec.
  virtual int Open(int folder, const std::string& path, int flags) = 0;
  /// Makes a file for writing and reading, under a name that is free, which its owner alone can open.
  virtual int Create(int folder, const std::string& name) = 0;
  virtual int MakeFolder(int parent, const std::string& name) = 0;
  virtual ssize_t Write(int file, std::string_view bytes) = 0;
  /// Gives an open file the time of its last change, in seconds since 1970 began.
  virtual int SetTime(int file, std::time_t changed) = 0;
  /// Starts to put a file's bytes on disk and does not wait. Only saves time.
  virtual void BeginFlush(int file) noexcept = 0;
  /// Puts a file's bytes on disk.
  virtual int Flush(int file) = 0;
  /// Puts the names in a folder on disk.
  virtual int FlushFolder(int folder) = 0;
  /// Renames a file within its folder. Without `replace` it fails with EEXIST when the new name is taken.
  virtual int Rename(int folder, const std::string& from, const std::string& to, bool replace) = 0;
  /// Takes a file into another folder, where nothing has its name.
  virtual int Move(int from, const std::string& name, int to) = 0;
  /// Ends a transaction of a list: `commit` returns 0, or -1 with errno.
  virtual int Commit(const std::function<int()>& commit) = 0;

  /// The system's, unless a test has put its own there.
  static FileCalls& Current();
  /// Puts others in their place, which have to live until they are replaced in turn. Returns the earlier ones.
  static FileCalls& Replace(FileCalls& calls);
};

/// Repeats a call for as long as signals interrupt it.
template <typename Call>
auto UntilDone(const Call& call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

/// FileCalls::Open of the current calls.
inline int OpenBeneath(int folder, const std::string& path, int flags) {
  return FileCalls::Current().Open(folder, path, flags);
}

}  // namespace apps

#endif  // KELVA_APPS_FILES_FILE_CALLS_H_

#ifndef KELVA_UI_LINUX_KELVA_HELPER_SESSION_LOCK_H_
#define KELVA_UI_LINUX_KELVA_HELPER_SESSION_LOCK_H_

#include <sys/types.h>

#include <string>

#include "base/FileDescriptor.h"

namespace helper {

/// What distinguishes one login session, and the agent's task in it, from another.
struct SessionIdentity {
  /// XDG_RUNTIME_DIR; may be empty.
  std::string runtimeDirectory;
  /// The home folder, for sessions without a run-time folder.
  std::string home;
  /// The machine's name: several machines may share a home folder.
  std::string machine;
  /// The address of the session's message bus: the one name that a unit of the user manager and an autostart entry of
  /// the same desktop have in common. Empty where there is none.
  std::string busAddress;
  /// The virtual bus being watched, or empty: a copy that watches a virtual bus may run beside the copy that watches
  /// the machine.
  std::string virtualBus;
};

/// Reads the identity from this process's environment.
SessionIdentity CurrentSession(const std::string& virtualBus);

/// The path of the session's lock file. Two processes of one session get the same path, whichever way they were
/// started; those of two sessions get different ones. It lies in the run-time folder. Without one it lies in a folder of
/// its own below the home folder: never in a folder that all users share, where another user could take the name.
std::string LockPath(const SessionIdentity& session);

/// Makes the folder of the lock file of a session without a run-time folder, and the folders between it and `home`, for
/// this user alone. A home folder is not made, nor what is above it. Returns 0 or an errno: EPERM when the folder is
/// another user's, or others may write into it.
int MakeLockFolder(const std::string& lockPath, const std::string& home);

/// The lock that keeps the agent to one copy per login session. It ends with the process, however that ends.
class SessionLock {
 public:
  enum class Outcome { kHeld, kHeldByAnother, kFailed };

  /// Tries to take the lock of the file at `path`, which is made when missing. Never waits.
  explicit SessionLock(const std::string& path);

  Outcome Result() const { return outcome_; }
  /// With kHeldByAnother the number of the process that holds the lock; 0 when the lock file does not tell.
  pid_t Rival() const { return rival_; }
  /// With kFailed the errno of the lock file that could not be made or used.
  int Error() const { return error_; }

 private:
  Outcome Take();
  Outcome Failed(int error);

  base::FileDescriptor file_;
  pid_t rival_ = 0;
  int error_ = 0;
  Outcome outcome_;
};

}  // namespace helper

#endif  // KELVA_UI_LINUX_KELVA_HELPER_SESSION_LOCK_H_

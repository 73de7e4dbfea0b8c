#ifndef KELVA_PLATFORM_FILES_H_
#define KELVA_PLATFORM_FILES_H_

#include <sys/stat.h>
#include <sys/types.h>

#include <ctime>
#include <string>

// What each system calls by another name. As system calls do, the functions return -1 on failure and set errno. Any thread.

namespace platform {

/// One call of the kernel, which no renaming of folders meanwhile can mislead. ENOSYS, or EPERM in some sandboxes, where there
/// is none.
int OpenBeneathAtOnce(int folder, const char* path, int flags, mode_t mode);
/// Opens `path` below an open folder, closed on exec. No component leads out of the folder or through a symbolic link.
/// `mode` counts with O_CREAT alone. The kernel does it where it can, otherwise WalkBeneath.
int OpenBeneath(int folder, const std::string& path, int flags, mode_t mode,
                int (&atOnce)(int, const char*, int, mode_t) = OpenBeneathAtOnce);
/// Opens one component after the other.
int WalkBeneath(int folder, const std::string& path, int flags, mode_t mode);

/// Renames a file within its folder; EEXIST when the new name is taken. EINVAL, ENOSYS or ENOTSUP where kernel or file system
/// cannot do that in one step.
int RenameNoReplace(int folder, const char* from, const char* to);

/// Puts a file's bytes where a power cut leaves them, at the latest with the next FlushFolder on the same disk.
int Flush(int file);
/// Puts the names in a folder, and all that was flushed before, where a power cut leaves them.
int FlushFolder(int folder);
/// Starts to put a file's bytes on disk and does not wait. Only saves time; does nothing where a system cannot.
void BeginFlush(int file) noexcept;

/// The present path of an open file or folder; empty when that cannot be told.
std::string PathOf(int descriptor);

/// The permissions that the system gives a new file in an open folder: by the umask, or by the folder's default list.
mode_t ModeOfNewFile(int folder);

/// The access control list of an open folder, as the kernel keeps it; empty when the permissions say all, and on a system that
/// keeps such lists in another way.
std::string AccessListOf(int folder);
/// Gives a file of an open folder this list. Follows no link. False when that is refused.
bool SetAccessList(int folder, const char* name, const std::string& list);
/// Takes the list of a file away, which leaves its permissions. Follows no link.
void RemoveAccessList(int folder, const char* name);

/// When a file's content was last changed.
timespec ContentChanged(const struct stat& status);
/// When anything of a file, its permissions included, was last changed.
timespec StatusChanged(const struct stat& status);

}  // namespace platform

#endif  // KELVA_PLATFORM_FILES_H_

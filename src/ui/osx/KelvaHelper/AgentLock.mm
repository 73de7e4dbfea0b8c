// One agent per user: a LaunchAgent, a login item and a double click would each start one, and each would launch the
// desktop application at every plug. A lock of the system is held by one process even when several start at the same
// time, and a process that was killed leaves none behind; neither holds for a look at the list of running applications.
#import "src/ui/osx/KelvaHelper/AgentLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>

NSString* AgentLockFolder() {
  // Below the home folder, so that each user of a Mac with fast user switching has an agent. Not a cache: what empties
  // caches would take the file away from under its holder.
  NSArray* folders = NSSearchPathForDirectoriesInDomains(NSApplicationSupportDirectory, NSUserDomainMask, YES);
  return [[folders objectAtIndex:0] stringByAppendingPathComponent:@"com.kelva.KelvaHelper"];
}

bool TakeAgentLock(NSString* folder) {
  [[NSFileManager defaultManager] createDirectoryAtPath:folder
                            withIntermediateDirectories:YES
                                             attributes:nil
                                                  error:nullptr];
  const char* path = [[folder stringByAppendingPathComponent:@"lock"] fileSystemRepresentation];
  const int file = open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  // The file stays open: closing it would give the lock back.
  return file < 0 || flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

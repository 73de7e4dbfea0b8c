// Unmounts a folder when the program that serves it was killed.
#include "apps/mount/Keeper.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

#include "apps/commandline/Failure.h"
#include "platform/Sockets.h"

namespace apps {
namespace {

// Below are only calls that are allowed between fork and exec in a program with threads.

constexpr int kLifeline = 3;

void KeepLifelineAlone(int lifeline) {
  const int null = ::open("/dev/null", O_RDWR);
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(null, descriptor);
  ::dup2(lifeline, kLifeline);
  ::closefrom(kLifeline + 1);
}

bool IsOver() {
  char word = 0;
  ssize_t count = 0;
  while ((count = ::read(kLifeline, &word, 1)) < 0 && errno == EINTR) {
  }
  return count != 0;
}

// Nobody answers a mount whose program has ended. One that answers is somebody else's.
bool IsDead(const char* path) {
  struct statfs status {};
  return ::statfs(path, &status) != 0;
}

void RunUnmount(const char* path) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::execlp("fusermount3", "fusermount3", "-uzq", "--", path, static_cast<char*>(nullptr));
    ::_exit(1);
  }
  int status = 0;
  while (child > 0 && ::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
}

[[noreturn]] void Keep(int lifeline, const char* path, bool removes) {
  ::setsid();
  ::prctl(PR_SET_NAME, "kelva-unmount");
  KeepLifelineAlone(lifeline);
  if (!IsOver() && IsDead(path)) {
    if (::umount2(path, MNT_DETACH) != 0) RunUnmount(path);
    if (removes) ::rmdir(path);
  }
  ::_exit(0);
}

}  // namespace

Keeper::Keeper(const std::string& path, bool removes) {
  std::array<int, 2> ends{-1, -1};
  if (platform::Pipe(ends) != 0) throw SystemFailure("make a pipe", errno);
  const base::FileDescriptor far(ends[0]);
  lifeline_.Reset(ends[1]);
  process_ = ::fork();
  if (process_ < 0) throw SystemFailure("start a process", errno);
  if (process_ == 0) Keep(far.Get(), path.c_str(), removes);
}

Keeper::~Keeper() {
  const char word = 'e';
  while (::write(lifeline_.Get(), &word, 1) < 0 && errno == EINTR) {
  }
  int status = 0;
  while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
  }
}

}  // namespace apps

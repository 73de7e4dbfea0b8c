// Pipes and sockets on macOS: each gets its properties after it was made.
#include "platform/Sockets.h"

#include <fcntl.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>

namespace platform {
namespace {

int SetCloseOnExec(int descriptor) {
  return ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

int SetUpSocket(int descriptor) {
  const int on = 1;
  const bool silent = ::setsockopt(descriptor, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on) == 0;
  // A socket whose peer has gone already takes no properties, and raises no signal either: it is at its end.
  return silent || errno == EINVAL ? SetCloseOnExec(descriptor) : -1;
}

void CloseFailed(int descriptor) {
  const int error = errno;
  ::close(descriptor);
  errno = error;
}

int Checked(int descriptor, int result) {
  if (result == 0) return descriptor;
  CloseFailed(descriptor);
  return -1;
}

int Checked(const std::array<int, 2>& ends, bool well) {
  if (well) return 0;
  for (const int end : ends) CloseFailed(end);
  return -1;
}

}  // namespace

int Pipe(std::array<int, 2>& ends) {
  if (::pipe(ends.data()) != 0) return -1;
  return Checked(ends, SetCloseOnExec(ends[0]) == 0 && SetCloseOnExec(ends[1]) == 0);
}

int SocketPair(std::array<int, 2>& ends) {
  if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0) return -1;
  return Checked(ends, SetUpSocket(ends[0]) == 0 && SetUpSocket(ends[1]) == 0);
}

int LocalSocket() {
  const int made = ::socket(AF_UNIX, SOCK_STREAM, 0);
  return made < 0 ? -1 : Checked(made, SetUpSocket(made));
}

int Accept(int listener) {
  const int accepted = ::accept(listener, nullptr, nullptr);
  if (accepted < 0) return -1;
  const bool well = SetUpSocket(accepted) == 0 && SetNonBlocking(accepted) == 0;
  return Checked(accepted, well ? 0 : -1);
}

ssize_t Send(int socket, const void* bytes, std::size_t size, int flags) {
  return ::send(socket, bytes, size, flags);
}

ssize_t SendMessage(int socket, const msghdr& message, int flags) {
  return ::sendmsg(socket, &message, flags);
}

pid_t PeerProcess(int socket) {
  pid_t process = 0;
  socklen_t length = sizeof process;
  return ::getsockopt(socket, SOL_LOCAL, LOCAL_PEERPID, &process, &length) == 0 ? process : 0;
}

}  // namespace platform

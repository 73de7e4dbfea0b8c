// Pipes and sockets on Linux.
#include "platform/Sockets.h"

#include <fcntl.h>
#include <unistd.h>

namespace platform {

int Pipe(std::array<int, 2>& ends) {
  return ::pipe2(ends.data(), O_CLOEXEC);
}

int SocketPair(std::array<int, 2>& ends) {
  return ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data());
}

int LocalSocket() {
  return ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

int Accept(int listener) {
  return ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
}

ssize_t Send(int socket, const void* bytes, std::size_t size, int flags) {
  return ::send(socket, bytes, size, flags | MSG_NOSIGNAL);
}

ssize_t SendMessage(int socket, const msghdr& message, int flags) {
  return ::sendmsg(socket, &message, flags | MSG_NOSIGNAL);
}

pid_t PeerProcess(int socket) {
  ucred credentials{};
  socklen_t length = sizeof credentials;
  return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &length) == 0 ? credentials.pid : 0;
}

}  // namespace platform

#pragma once
#include_next <sys/socket.h>

constexpr int SO_NOSIGPIPE = 0x1022;
constexpr int SOL_LOCAL = 0;
constexpr int LOCAL_PEERPID = 2;

// All sockets count as having the property: sending, below, never raises the signal.
inline int StandInSetOption(int socket, int level, int name, const void* value, socklen_t size) {
  return level == SOL_SOCKET && name == SO_NOSIGPIPE ? 0 : ::setsockopt(socket, level, name, value, size);
}

inline int StandInGetOption(int socket, int level, int name, void* value, socklen_t* size) {
  if (level != SOL_LOCAL || name != LOCAL_PEERPID) return ::getsockopt(socket, level, name, value, size);
  ucred credentials{};
  socklen_t length = sizeof credentials;
  if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &length) != 0) return -1;
  *static_cast<pid_t*>(value) = credentials.pid;
  return 0;
}

inline ssize_t StandInSend(int socket, const void* bytes, size_t size, int flags) {
  return ::send(socket, bytes, size, flags | MSG_NOSIGNAL);
}

inline ssize_t StandInSendMessage(int socket, const msghdr* message, int flags) {
  return ::sendmsg(socket, message, flags | MSG_NOSIGNAL);
}

#define setsockopt StandInSetOption
#define getsockopt StandInGetOption
#define send StandInSend
#define sendmsg StandInSendMessage

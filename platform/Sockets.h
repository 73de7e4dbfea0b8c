#ifndef KELVA_PLATFORM_SOCKETS_H_
#define KELVA_PLATFORM_SOCKETS_H_

#include <sys/socket.h>
#include <sys/types.h>

#include <array>
#include <cstddef>

// Pipes and sockets that no other program inherits, and on which a peer that has gone is an error (EPIPE) and no signal. As
// system calls do, the functions return -1 on failure and set errno; whoever gets a descriptor owns it. Any thread.

namespace platform {

/// A pipe: ends[0] reads, ends[1] writes.
int Pipe(std::array<int, 2>& ends);
/// Two local stream sockets that are connected with each other.
int SocketPair(std::array<int, 2>& ends);
/// A local stream socket.
int LocalSocket();
/// The next connection of a listening socket. It does not block.
int Accept(int listener);
/// Reading and writing no longer wait: they fail with EAGAIN.
int SetNonBlocking(int descriptor);

/// send(2) on a socket that was made here.
ssize_t Send(int socket, const void* bytes, std::size_t size, int flags);
/// sendmsg(2) on a socket that was made here.
ssize_t SendMessage(int socket, const msghdr& message, int flags);

/// The process that connected a local socket, or bound the one that this is connected with; 0 when the system does not tell.
pid_t PeerProcess(int socket);

}  // namespace platform

#endif  // KELVA_PLATFORM_SOCKETS_H_

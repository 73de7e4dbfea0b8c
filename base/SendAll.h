#ifndef KELVA_BASE_SEND_ALL_H_
#define KELVA_BASE_SEND_ALL_H_

#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <span>
#include <string_view>

#include "platform/Sockets.h"

// Reads and writes that move all of the bytes: they go on after signals and short counts.

namespace base {

/// Writes all of `bytes` to a file, pipe or terminal. Returns 0 or errno.
inline int WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

/// Sends `head`, then `body`, on a socket of platform/Sockets.h. False when the peer has gone; never raises SIGPIPE.
inline bool SendAll(int socket, std::span<const std::uint8_t> head, std::span<const std::uint8_t> body = {}) {
  // sendmsg only reads, but an iovec has no const pointer.
  const auto part = [](std::span<const std::uint8_t> bytes) {
    return iovec{const_cast<std::uint8_t*>(bytes.data()), bytes.size()};
  };
  while (!head.empty() || !body.empty()) {
    std::array<iovec, 2> parts{part(head), part(body)};
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = 2;
    const ssize_t count = platform::SendMessage(socket, message, 0);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    const auto sent = static_cast<std::size_t>(count);
    const std::size_t ofHead = std::min(sent, head.size());
    head = head.subspan(ofHead);
    body = body.subspan(sent - ofHead);
  }
  return true;
}

/// Fills `bytes`. False when the peer has gone, or has not sent them all within the receive time-out of the socket.
inline bool ReceiveAll(int socket, std::span<std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::recv(socket, bytes.data(), bytes.size(), 0);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace base

#endif  // KELVA_BASE_SEND_ALL_H_

#include "vcam/usbip/SocketIo.h"

#include <sys/socket.h>
#include <sys/uio.h>

#include <array>
#include <cerrno>

namespace vcam::usbip {
namespace {

// sendmsg only reads, but its iovec knows no const.
iovec Part(std::span<const std::uint8_t> bytes) {
  return {const_cast<std::uint8_t*>(bytes.data()), bytes.size()};
}

}  // namespace

bool SendAll(int socket, std::span<const std::uint8_t> head, std::span<const std::uint8_t> body) {
  while (!head.empty() || !body.empty()) {
    std::array<iovec, 2> parts{Part(head), Part(body)};
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = parts.size();
    const ssize_t count = ::sendmsg(socket, &message, MSG_NOSIGNAL);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    const auto sent = static_cast<std::size_t>(count);
    const std::size_t ofHead = std::min(sent, head.size());
    head = head.subspan(ofHead);
    body = body.subspan(sent - ofHead);
  }
  return true;
}

bool ReceiveAll(int socket, std::span<std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::recv(socket, bytes.data(), bytes.size(), 0);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace vcam::usbip

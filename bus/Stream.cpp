// The buffers of one peer at the far end of the bus. Nothing here waits, because one loop serves all peers.
#include "bus/Stream.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>

#include "platform/Sockets.h"

namespace bus {
namespace {

// Above this, the peer's requests wait until it has read answers.
constexpr std::size_t kMaxUnread = 1 << 20;
// Above this, the peer is disconnected, because it does not read the events that it subscribed to.
constexpr std::size_t kMaxQueued = 4 * kMaxFrame;

bool WouldBlock() {
  return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

}  // namespace

short Stream::Wants() const {
  const int reading = Waiting() < kMaxUnread ? POLLIN : 0;
  return static_cast<short>(reading | (Waiting() > 0 ? POLLOUT : 0));
}

void Stream::Queue(base::Bytes frame) {
  if (sent_ == out_.size()) {
    out_ = std::move(frame);
    sent_ = 0;
  } else {
    out_.insert(out_.end(), frame.begin(), frame.end());
  }
}

bool Stream::ReadSome() {
  std::array<std::uint8_t, 64 * 1024> block;
  const ssize_t count = ::recv(socket_.Get(), block.data(), block.size(), MSG_DONTWAIT);
  if (count < 0) return WouldBlock();
  if (count == 0) return false;
  in_.Feed(std::span(block).first(static_cast<std::size_t>(count)));
  return true;
}

bool Stream::WriteSome() {
  while (Waiting() > 0) {
    const ssize_t count = platform::Send(socket_.Get(), out_.data() + sent_, Waiting(), MSG_DONTWAIT);
    if (count < 0) return WouldBlock() && Waiting() <= kMaxQueued;
    sent_ += static_cast<std::size_t>(count);
  }
  return true;
}

}  // namespace bus

// Serves one attached host until the host, the camera or the caller ends it.
#include "vcam/usbip/Session.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <limits>

#include "base/SendAll.h"

namespace vcam::usbip {
namespace {

constexpr std::size_t kReceiveSize = 128U << 10;
constexpr int kForever = -1;

// Rounded up, because a wait that ends too early would have to be repeated.
int MillisecondsFrom(Clock::time_point now, Clock::time_point until) {
  const auto wait = std::chrono::ceil<std::chrono::milliseconds>(until - now).count();
  return static_cast<int>(std::min<std::int64_t>(wait, std::numeric_limits<int>::max()));
}

}  // namespace

void Session::Run() {
  while (AnswerAll() && !camera_.Unplugged(Clock::now())) {
    Wait();
    if (!Receive()) break;
  }
  Pull();
}

void Session::Pull() {
  ::shutdown(socket_.Get(), SHUT_RDWR);
}

bool Session::AnswerAll() {
  while (const auto finished = camera_.Next(Clock::now())) {
    if (!Answer(*finished)) return false;
  }
  return true;
}

bool Session::Answer(const Finished& finished) {
  const Taken& result = finished.result;
  const Header header = EncodeSubmitted(finished.sequence, result.status, result.actual);
  return base::SendAll(socket_.Get(), header, result.data) && !result.unplug;
}

void Session::Wait() const {
  const auto now = Clock::now();
  const auto until = camera_.WaitsUntil(now);
  pollfd readable{socket_.Get(), POLLIN, 0};
  ::poll(&readable, 1, until ? MillisecondsFrom(now, *until) : kForever);
}

// Handles what has arrived; false when the host has gone.
bool Session::Receive() {
  std::array<std::uint8_t, kReceiveSize> buffer;
  const ssize_t count = ::recv(socket_.Get(), buffer.data(), buffer.size(), MSG_DONTWAIT);
  if (count < 0) return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
  if (count == 0) return false;
  reader_.Feed(std::span(buffer).first(static_cast<std::size_t>(count)));
  while (auto message = reader_.Next()) {
    if (const auto* unlink = std::get_if<Unlink>(&*message)) {
      const bool pending = camera_.Unlink(unlink->target);
      if (!base::SendAll(socket_.Get(), EncodeUnlinked(unlink->sequence, pending ? kUrbUnlinked : kUrbOk))) {
        return false;
      }
    } else {
      camera_.Submit(std::move(std::get<usbip::Submit>(*message)), Clock::now());
      if (!AnswerAll()) return false;
    }
  }
  return true;
}

}  // namespace vcam::usbip

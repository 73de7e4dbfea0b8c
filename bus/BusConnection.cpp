// A client's connection to a bus: finds each answer by its tag and keeps the events that arrive in between.
#include "bus/BusConnection.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "base/SendAll.h"
#include "bus/Listener.h"

namespace bus {
namespace {

// The answer to a command that reads 64 KiB comes in one go.
constexpr std::size_t kAtOnce = std::size_t{68} << 10;

int MillisecondsUntil(std::chrono::steady_clock::time_point deadline) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count();
  return static_cast<int>(std::clamp<long long>(left, 0, 1'000'000'000));
}

bool IsEvent(const Frame& frame) {
  return frame.kind == Kind::kPlugged || frame.kind == Kind::kUnplugged;
}

std::string WhatToDo(int error, const std::string& path) {
  if (error == EACCES || error == EPERM) return "; it runs as another user, or its folder is closed to you.";
  return "; start one with `kelva-vcam serve --virtual " + path + "`.";
}

}  // namespace

BusConnection::BusConnection(const std::string& path) : path_(path), socket_(ConnectTo(path)) {
  if (!socket_) {
    const int error = errno;
    throw std::runtime_error("Cannot reach a bus at " + path + ": " + std::strerror(error) + WhatToDo(error, path));
  }
  Request(Kind::kHello, EncodeNumber(kProtocolVersion));
}

Frame BusConnection::Request(Kind kind, const base::Bytes& payload) {
  const std::uint32_t tag = nextTag_++;
  std::optional<Frame> answer;
  if (SendAll(EncodeFrame(kind, tag, payload))) answer = AwaitAnswer(tag, std::nullopt);
  if (!answer) throw std::runtime_error("The bus at " + path_ + " has ended; start it again with `kelva-vcam serve`.");
  if (answer->kind != Kind::kError) return std::move(*answer);
  throw BusRefusal(
      Decode<ErrorAnswer>(answer->payload).value_or(ErrorAnswer{{}, "The bus refused without saying why."}));
}

std::optional<Frame> BusConnection::Request(Kind kind, const base::Bytes& payload, std::chrono::milliseconds timeout) {
  const std::uint32_t tag = nextTag_++;
  if (!SendAll(EncodeFrame(kind, tag, payload))) return std::nullopt;
  return AwaitAnswer(tag, std::chrono::steady_clock::now() + timeout);
}

bool BusConnection::SendAll(const base::Bytes& bytes) {
  if (base::SendAll(socket_.Get(), bytes)) return true;
  ended_ = true;
  return false;
}

std::optional<Frame> BusConnection::AwaitAnswer(std::uint32_t tag, Deadline deadline) {
  do {
    while (std::optional<Frame> frame = in_.Next()) {
      if (IsEvent(*frame)) {
        events_.push_back(std::move(*frame));
      } else if (frame->tag == tag) {
        return frame;
      }
    }
  } while (Receive(deadline, true));
  return std::nullopt;
}

bool BusConnection::Receive(Deadline deadline, bool wait) {
  if (ended_ || in_.Broken()) {
    ended_ = true;
    return false;
  }
  pollfd readable{socket_.Get(), POLLIN, 0};
  int ready = 0;
  do {
    ready = ::poll(&readable, 1, !wait ? 0 : deadline ? MillisecondsUntil(*deadline) : -1);
  } while (ready < 0 && errno == EINTR);
  if (ready == 0) return false;
  const std::span<std::uint8_t> room = in_.Room(kAtOnce);
  const ssize_t count = ::recv(socket_.Get(), room.data(), room.size(), 0);
  if (count <= 0) {
    ended_ = !(count < 0 && errno == EINTR);
    return !ended_;
  }
  in_.Came(static_cast<std::size_t>(count));
  return true;
}

std::optional<Frame> BusConnection::NextEvent() {
  for (;;) {
    while (std::optional<Frame> frame = in_.Next()) {
      if (IsEvent(*frame)) events_.push_back(std::move(*frame));
    }
    if (!events_.empty()) break;
    if (!Receive(std::nullopt, false)) return std::nullopt;
  }
  Frame event = std::move(events_.front());
  events_.pop_front();
  return event;
}

}  // namespace bus

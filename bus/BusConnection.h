#ifndef KELVA_BUS_BUS_CONNECTION_H_
#define KELVA_BUS_BUS_CONNECTION_H_

#include <chrono>
#include <deque>
#include <optional>
#include <stdexcept>
#include <string>

#include "base/FileDescriptor.h"
#include "bus/FrameReader.h"

namespace bus {

/// The bus refused a request; what() is its sentence.
class BusRefusal : public std::runtime_error {
 public:
  explicit BusRefusal(const ErrorAnswer& answer) : std::runtime_error(answer.sentence), code(answer.code) {}
  ErrorCode code;
};

/// One connection to a bus: requests and their answers, one at a time, and the events that come between.
class BusConnection {
 public:
  /// Connects and greets. Throws std::runtime_error with one sentence when nobody serves the path.
  explicit BusConnection(const std::string& path);

  /// Sends a request once and waits for its answer. Throws BusRefusal, or std::runtime_error when the bus has gone.
  Frame Request(Kind kind, const base::Bytes& payload);
  /// The same for a command: nothing when no answer came in time or the bus has gone (Ended).
  std::optional<Frame> Request(Kind kind, const base::Bytes& payload, std::chrono::milliseconds timeout);

  /// The next event that came while a request waited, or that can be read without waiting.
  std::optional<Frame> NextEvent();
  /// Whether NextEvent has events although the descriptor is not readable.
  bool HasQueuedEvents() const { return !events_.empty(); }
  /// Whether the bus has gone, as far as a request or NextEvent has noticed.
  bool Ended() const { return ended_; }
  int Descriptor() const { return socket_.Get(); }

 private:
  using Deadline = std::optional<std::chrono::steady_clock::time_point>;

  bool SendAll(const base::Bytes& bytes);
  std::optional<Frame> AwaitAnswer(std::uint32_t tag, Deadline deadline);
  /// Reads once; false when nothing came by the deadline or the bus has gone.
  bool Receive(Deadline deadline, bool wait);

  std::string path_;
  base::FileDescriptor socket_;
  FrameReader in_;
  std::deque<Frame> events_;
  std::uint32_t nextTag_ = 1;
  bool ended_ = false;
};

}  // namespace bus

#endif  // KELVA_BUS_BUS_CONNECTION_H_

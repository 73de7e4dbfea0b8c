#ifndef KELVA_BUS_STREAM_H_
#define KELVA_BUS_STREAM_H_

#include "base/FileDescriptor.h"
#include "bus/FrameReader.h"

namespace bus {

/// One connected peer: its socket, what has arrived and what waits to be sent.
class Stream {
 public:
  explicit Stream(base::FileDescriptor socket) : socket_(std::move(socket)) {}

  int Descriptor() const { return socket_.Get(); }
  /// The events to poll for. Stops reading from a peer that does not read its answers.
  short Wants() const;

  void Queue(base::Bytes frame);
  /// Reads what is there; false when the peer has gone.
  bool ReadSome();
  /// Sends what fits; false when the peer has gone or leaves too much unread.
  bool WriteSome();
  std::optional<Frame> Next() { return in_.Next(); }
  bool Broken() const { return in_.Broken(); }

 private:
  std::size_t Waiting() const { return out_.size() - sent_; }

  base::FileDescriptor socket_;
  FrameReader in_;
  base::Bytes out_;
  std::size_t sent_ = 0;
};

}  // namespace bus

#endif  // KELVA_BUS_STREAM_H_

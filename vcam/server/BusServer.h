#ifndef KELVA_VCAM_SERVER_BUS_SERVER_H_
#define KELVA_VCAM_SERVER_BUS_SERVER_H_

#include <map>
#include <string>
#include <vector>

#include <poll.h>

#include "base/AcceptPause.h"
#include "bus/Listener.h"
#include "bus/Stream.h"
#include "vcam/server/Bus.h"

namespace vcam::server {

/// A bus of virtual cameras that several processes share over a socket.
class BusServer {
 public:
  /// Listens at `path`; throws std::runtime_error as Listener does.
  explicit BusServer(const std::string& path);

  /// Serves until `stopDescriptor` is readable.
  void Run(int stopDescriptor);

 private:
  void Prepare(int stopDescriptor, std::vector<pollfd>& waits) const;
  int TimeoutMs() const;
  void ServeReady(const std::vector<pollfd>& waits);
  void AcceptAll();
  void SendTo(PeerId peer, base::Bytes frame);
  bool Serve(PeerId peer, bus::Stream& stream, short events);
  void Drop(PeerId peer);
  void FlushAll();

  bus::Listener listener_;
  std::map<PeerId, bus::Stream> streams_;
  Bus bus_;
  PeerId nextPeer_ = 1;
  base::AcceptPause pause_;
};

}  // namespace vcam::server

#endif  // KELVA_VCAM_SERVER_BUS_SERVER_H_

#ifndef KELVA_VCAM_SERVER_BUS_H_
#define KELVA_VCAM_SERVER_BUS_H_

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bus/Protocol.h"
#include "vcam/server/Worker.h"

namespace vcam::server {

/// The bus without its sockets: cameras, peers, and what each request does.
///
/// Threads: all members are called on the thread of the loop. Commands run on one thread per camera, so that a slow one
/// holds up no other camera. A prompt one of a camera that is alone runs on the loop: two threads fewer are woken for it.
class Bus {
 public:
  using Send = std::function<void(PeerId, base::Bytes frame)>;
  using Clock = std::chrono::steady_clock;

  /// `send` takes whole frames for a peer that was added and not yet removed.
  explicit Bus(Send send);
  ~Bus();

  void AddPeer(PeerId peer, pid_t process);
  /// Ends the peer's session; answers that are still to come for it are dropped.
  void RemovePeer(PeerId peer);
  /// Handles one request; false when the frame is malformed and the caller must disconnect the peer.
  bool Handle(PeerId peer, const bus::Frame& frame);

  /// Readable when TakeCompletions has something to do.
  int Descriptor() const { return completions_->Descriptor(); }
  void TakeCompletions();
  /// When SendDue must be called next; the largest time for never.
  Clock::time_point NextDue() const;
  void SendDue();

 private:
  struct Camera {
    bus::CameraStatus status;
    std::shared_ptr<VirtualCamera> device;
    std::unique_ptr<Worker> worker;
    PeerId holder = 0;
  };
  struct Peer {
    pid_t process = 0;
    bool greeted = false;
    bool subscribed = false;
    std::size_t unfinished = 0;  // commands that are running or held
    std::uint32_t session = 0;
  };
  struct Held {
    Completion completion;
    Clock::time_point due;
  };

  bool Greet(PeerId peer, const bus::Frame& frame);
  bool Subscribe(PeerId peer, const bus::Frame& frame);
  bool Plug(PeerId peer, const bus::Frame& frame);
  bool Unplug(PeerId peer, const bus::Frame& frame);
  bool Status(PeerId peer, const bus::Frame& frame);
  bool Fault(PeerId peer, const bus::Frame& frame);
  bool StartSession(PeerId peer, const bus::Frame& frame);
  bool EndSession(PeerId peer, const bus::Frame& frame);
  bool RunCommand(PeerId peer, const bus::Frame& frame);

  /// Sends an answer; true, because the request was well-formed.
  bool Answer(PeerId peer, std::uint32_t tag, bus::Kind kind, const base::Bytes& payload = {});
  bool AnswerError(PeerId peer, std::uint32_t tag, bus::ErrorCode code, const std::string& sentence);
  void AnswerCommand(const Completion& completion);
  /// Answers a command that was run, now or when it is due.
  void Settle(Completion completion);
  void Announce(bus::Kind kind, const base::Bytes& payload);
  Camera* FindBySerial(const std::string& serial);
  bool AnswerNoSuchCamera(PeerId peer, const bus::Frame& frame, const std::string& serial);
  bool AddCamera(PeerId peer, const bus::Frame& frame, const bus::PlugRequest& request);
  void DropSession(PeerId peer);
  void RemoveCamera(std::uint32_t id);
  void ReleaseHeld(std::uint32_t camera);
  void DropRetired();
  template <typename Condition>
  std::vector<Held> TakeHeld(Condition isMeant);
  std::size_t DropHeld(PeerId peer);

  Send send_;
  std::shared_ptr<CompletionQueue> completions_;
  std::map<PeerId, Peer> peers_;
  std::map<std::uint32_t, Camera> cameras_;
  std::vector<std::unique_ptr<Worker>> retired_;
  std::vector<Held> held_;
  std::uint32_t nextCamera_ = 1;
};

}  // namespace vcam::server

#endif  // KELVA_VCAM_SERVER_BUS_H_

// The state of the bus: its cameras, its peers, and the replies that wait to be sent.
#include "vcam/server/Bus.h"

#include <algorithm>
#include <utility>

namespace vcam::server {

Bus::Bus(Send send) : send_(std::move(send)), completions_(std::make_shared<CompletionQueue>()) {}

Bus::~Bus() {
  for (auto& [id, camera] : cameras_) camera.device->Unplug();
}

void Bus::AddPeer(PeerId peer, pid_t process) {
  peers_[peer].process = process;
}

void Bus::RemovePeer(PeerId peer) {
  // Done before the entry that names the camera is erased.
  DropSession(peer);
  peers_.erase(peer);
  DropHeld(peer);
}

std::size_t Bus::DropHeld(PeerId peer) {
  return std::erase_if(held_, [&](const Held& held) { return held.completion.peer == peer; });
}

void Bus::DropSession(PeerId peer) {
  const auto found = cameras_.find(std::exchange(peers_[peer].session, 0));
  if (found == cameras_.end()) return;
  found->second.device->EndSession();
  found->second.holder = 0;
  found->second.status.holder = 0;
}

bool Bus::Answer(PeerId peer, std::uint32_t tag, bus::Kind kind, const base::Bytes& payload) {
  send_(peer, bus::EncodeFrame(kind, tag, payload));
  return true;
}

bool Bus::AnswerError(PeerId peer, std::uint32_t tag, bus::ErrorCode code, const std::string& sentence) {
  return Answer(peer, tag, bus::Kind::kError, bus::Encode(bus::ErrorAnswer{code, sentence}));
}

void Bus::Announce(bus::Kind kind, const base::Bytes& payload) {
  for (const auto& [id, peer] : peers_) {
    if (peer.subscribed) Answer(id, 0, kind, payload);
  }
}

Bus::Camera* Bus::FindBySerial(const std::string& serial) {
  const auto found = std::find_if(cameras_.begin(), cameras_.end(),
                                  [&](const auto& item) { return item.second.status.serial == serial; });
  return found == cameras_.end() ? nullptr : &found->second;
}

void Bus::TakeCompletions() {
  for (Completion& completion : completions_->TakeAll()) Settle(std::move(completion));
  DropRetired();
}

void Bus::Settle(Completion completion) {
  if (completion.reply.transport == wire::Transport::kHang) {
    // Held until the camera leaves or the peer sends another command.
    held_.push_back({std::move(completion), Clock::time_point::max()});
  } else if (completion.reply.delay.count() > 0) {
    const auto due = Clock::now() + completion.reply.delay;
    held_.push_back({std::move(completion), due});
  } else {
    AnswerCommand(completion);
  }
}

void Bus::AnswerCommand(const Completion& completion) {
  const auto peer = peers_.find(completion.peer);
  if (peer != peers_.end()) {
    --peer->second.unfinished;
    Answer(completion.peer, completion.tag, bus::Kind::kReply, bus::Encode(completion.reply));
  }
  // A fault unplugged the camera in the middle of this command.
  if (completion.reply.transport == wire::Transport::kGone) RemoveCamera(completion.camera);
}

void Bus::DropRetired() {
  std::erase_if(retired_, [](const std::unique_ptr<Worker>& worker) { return worker->Idle(); });
}

Bus::Clock::time_point Bus::NextDue() const {
  Clock::time_point next = Clock::time_point::max();
  for (const Held& held : held_) next = std::min(next, held.due);
  return next;
}

// Taken out before they are answered: answering may remove a camera, which changes held_.
template <typename Condition>
std::vector<Bus::Held> Bus::TakeHeld(Condition isMeant) {
  const auto meant = std::stable_partition(held_.begin(), held_.end(), std::not_fn(isMeant));
  std::vector<Held> taken(std::make_move_iterator(meant), std::make_move_iterator(held_.end()));
  held_.erase(meant, held_.end());
  return taken;
}

void Bus::SendDue() {
  const Clock::time_point now = Clock::now();
  for (const Held& held : TakeHeld([&](const Held& one) { return one.due <= now; })) AnswerCommand(held.completion);
}

void Bus::ReleaseHeld(std::uint32_t camera) {
  for (Held& held : TakeHeld([&](const Held& one) { return one.completion.camera == camera; })) {
    held.completion.reply = wire::EndedBy(wire::Transport::kGone);
    AnswerCommand(held.completion);
  }
}

void Bus::RemoveCamera(std::uint32_t id) {
  const auto found = cameras_.find(id);
  if (found == cameras_.end()) return;
  // Erased before any answer goes out, because AnswerCommand comes back here for a camera that has gone.
  Camera camera = std::move(found->second);
  cameras_.erase(found);
  camera.device->Unplug();
  const auto holder = peers_.find(camera.holder);
  if (holder != peers_.end()) holder->second.session = 0;
  ReleaseHeld(id);
  // The thread may still run a command. DropRetired joins it later, so that the loop does not wait now.
  retired_.push_back(std::move(camera.worker));
  DropRetired();
  Announce(bus::Kind::kUnplugged, bus::EncodeNumber(id));
}

}  // namespace vcam::server

// The loop that serves all sockets of a bus.
#include "vcam/server/BusServer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>

#include "platform/Sockets.h"

namespace vcam::server {
namespace {

// Before the peers in the list of descriptors.
constexpr std::size_t kStop = 0;
constexpr std::size_t kListener = 1;
constexpr std::size_t kCompletions = 2;
constexpr std::size_t kFirstPeer = 3;

}  // namespace

BusServer::BusServer(const std::string& path)
    : listener_(path), bus_([this](PeerId peer, base::Bytes frame) { SendTo(peer, std::move(frame)); }) {}

void BusServer::SendTo(PeerId peer, base::Bytes frame) {
  const auto stream = streams_.find(peer);
  if (stream == streams_.end()) return;
  stream->second.Queue(std::move(frame));
  // Sent now, so that no peer acts on a change before the others have been told. FlushAll finds peers that have gone.
  stream->second.WriteSome();
}

void BusServer::Run(int stopDescriptor) {
  std::vector<pollfd> waits;
  for (;;) {
    Prepare(stopDescriptor, waits);
    if (::poll(waits.data(), static_cast<nfds_t>(waits.size()), pause_.TimeoutMs(TimeoutMs())) < 0) {
      if (errno == EINTR) continue;
      throw std::runtime_error(std::string("Cannot wait for requests: ") + std::strerror(errno) + ".");
    }
    if (waits[kStop].revents != 0) return;
    ServeReady(waits);
    // After the requests: a peer that has just hung up gets no answer any more.
    if (waits[kCompletions].revents != 0) bus_.TakeCompletions();
    bus_.SendDue();
    if (waits[kListener].revents != 0) AcceptAll();
    FlushAll();
  }
}

void BusServer::Prepare(int stopDescriptor, std::vector<pollfd>& waits) const {
  waits.assign({{stopDescriptor, POLLIN, 0},
                {pause_.Awaited(listener_.Descriptor()), POLLIN, 0},
                {bus_.Descriptor(), POLLIN, 0}});
  for (const auto& [peer, stream] : streams_) waits.push_back({stream.Descriptor(), stream.Wants(), 0});
}

int BusServer::TimeoutMs() const {
  const auto due = bus_.NextDue();
  if (due == Bus::Clock::time_point::max()) return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(due - Bus::Clock::now()).count();
  return static_cast<int>(std::clamp<long long>(left, 0, 60'000));
}

void BusServer::ServeReady(const std::vector<pollfd>& waits) {
  std::size_t index = kFirstPeer;
  std::vector<PeerId> gone;
  // The peers are those that Prepare listed, in the same order: nothing is added or removed in between.
  for (auto& [peer, stream] : streams_) {
    const short events = waits[index++].revents;
    if (events != 0 && !Serve(peer, stream, events)) gone.push_back(peer);
  }
  for (const PeerId peer : gone) Drop(peer);
}

bool BusServer::Serve(PeerId peer, bus::Stream& stream, short events) {
  if ((events & (POLLIN | POLLHUP | POLLERR)) != 0) {
    if (!stream.ReadSome()) return false;
    while (const std::optional<bus::Frame> frame = stream.Next()) {
      if (!bus_.Handle(peer, *frame)) return false;
    }
    if (stream.Broken()) return false;
  }
  return true;
}

void BusServer::FlushAll() {
  std::vector<PeerId> gone;
  for (auto& [peer, stream] : streams_) {
    if (!stream.WriteSome()) gone.push_back(peer);
  }
  for (const PeerId peer : gone) Drop(peer);
}

void BusServer::Drop(PeerId peer) {
  bus_.RemovePeer(peer);
  streams_.erase(peer);
}

void BusServer::AcceptAll() {
  while (base::FileDescriptor socket = listener_.Accept()) {
    const PeerId peer = nextPeer_++;
    bus_.AddPeer(peer, platform::PeerProcess(socket.Get()));
    streams_.emplace(peer, bus::Stream(std::move(socket)));
  }
  pause_.NoteFailure(errno);
}

}  // namespace vcam::server

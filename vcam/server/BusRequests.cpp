// What each request of a peer does. A function returns false for a malformed request, which ends the connection.
#include <exception>

#include "vcam/faults/Fault.h"
#include "vcam/server/Bus.h"

namespace vcam::server {
namespace {

constexpr std::size_t kMaxUnfinished = 4;
constexpr std::size_t kMaxSerial = 126;  // what a USB string descriptor holds

bus::CameraStatus StatusOf(std::uint32_t id, const Options& options) {
  return {.id = id,
          .serial = options.serial,
          .vendor = options.vendor,
          .product = options.product,
          .revision = options.revision,
          .storage = options.storage.string(),
          .peripheralType = options.peripheralType};
}

// Reads a piece of what was selected before, which takes no longer than to wake another thread.
bool IsPrompt(const wire::Command& command) {
  constexpr std::uint8_t kReadChunk = 0xC4;
  return command.cdb.front() == kReadChunk;
}

}  // namespace

bool Bus::Handle(PeerId peer, const bus::Frame& frame) {
  static const std::map<bus::Kind, bool (Bus::*)(PeerId, const bus::Frame&)> requests{
      {bus::Kind::kHello, &Bus::Greet},
      {bus::Kind::kSubscribe, &Bus::Subscribe},
      {bus::Kind::kPlug, &Bus::Plug},
      {bus::Kind::kUnplug, &Bus::Unplug},
      {bus::Kind::kStatus, &Bus::Status},
      {bus::Kind::kFault, &Bus::Fault},
      {bus::Kind::kStartSession, &Bus::StartSession},
      {bus::Kind::kEndSession, &Bus::EndSession},
      {bus::Kind::kCommand, &Bus::RunCommand},
  };
  if (frame.kind != bus::Kind::kHello && !peers_[peer].greeted) return false;
  const auto request = requests.find(frame.kind);
  return request != requests.end() && (this->*request->second)(peer, frame);
}

bool Bus::Greet(PeerId peer, const bus::Frame& frame) {
  const auto version = bus::Decode<std::uint32_t>(frame.payload);
  if (!version) return false;
  if (*version != bus::kProtocolVersion) {
    return AnswerError(peer, frame.tag, bus::ErrorCode::kRefused,
                       "This bus speaks version " + std::to_string(bus::kProtocolVersion) +
                           " of its protocol, not version " + std::to_string(*version) +
                           "; use programs of one release.");
  }
  peers_[peer].greeted = true;
  return Answer(peer, frame.tag, bus::Kind::kOk);
}

bool Bus::Subscribe(PeerId peer, const bus::Frame& frame) {
  if (!frame.payload.empty()) return false;
  for (const auto& [id, camera] : cameras_) Answer(peer, 0, bus::Kind::kPlugged, bus::Encode(camera.status));
  peers_[peer].subscribed = true;
  return Answer(peer, frame.tag, bus::Kind::kOk);
}

bool Bus::Plug(PeerId peer, const bus::Frame& frame) {
  const auto request = bus::Decode<bus::PlugRequest>(frame.payload);
  if (!request) return false;
  if (request->serial.empty() || request->serial.size() > kMaxSerial) {
    return AnswerError(peer, frame.tag, bus::ErrorCode::kRefused,
                       "A serial number has 1 to " + std::to_string(kMaxSerial) + " characters; give another one.");
  }
  if (FindBySerial(request->serial) == nullptr) return AddCamera(peer, frame, *request);
  return AnswerError(
      peer, frame.tag, bus::ErrorCode::kBusy,
      "Camera " + request->serial + " is plugged in already; unplug it first or use another serial number.");
}

bool Bus::AddCamera(PeerId peer, const bus::Frame& frame, const bus::PlugRequest& request) {
  Options options;
  options.serial = request.serial;
  options.storage = request.storage;
  options.peripheralType = request.peripheralType;
  options.forwardOnly = (request.traits & bus::kForwardOnly) != 0;
  options.hasKeys = (request.traits & bus::kWithoutKeys) == 0;
  if ((request.traits & bus::kOpaque) != 0) options.opaque = request.seed;
  if (!request.revision.empty()) options.revision = request.revision;
  const auto layout = CatalogueLayout::ByName(request.catalogue.empty() ? "standard" : request.catalogue);
  if (!layout) {
    return AnswerError(
        peer, frame.tag, bus::ErrorCode::kRefused,
        "There is no catalogue layout " + request.catalogue + "; choose standard, reordered, unknown-fields or wide.");
  }
  options.catalogue = *layout;
  try {
    Camera camera;
    camera.device = std::make_shared<VirtualCamera>(options);
    camera.worker = std::make_unique<Worker>(camera.device, completions_);
    camera.status = StatusOf(nextCamera_, options);
    const base::Bytes announcement = bus::Encode(camera.status);
    cameras_.emplace(nextCamera_, std::move(camera));
    Announce(bus::Kind::kPlugged, announcement);
    return Answer(peer, frame.tag, bus::Kind::kOk, bus::EncodeNumber(nextCamera_++));
  } catch (const std::exception& error) {
    return AnswerError(peer, frame.tag, bus::ErrorCode::kRefused, error.what());
  }
}

bool Bus::AnswerNoSuchCamera(PeerId peer, const bus::Frame& frame, const std::string& serial) {
  return AnswerError(peer, frame.tag, bus::ErrorCode::kNoSuchCamera,
                     "No camera " + serial + " is plugged in; `kelva-vcam status` lists those that are.");
}

bool Bus::Unplug(PeerId peer, const bus::Frame& frame) {
  const auto serial = bus::Decode<std::string>(frame.payload);
  if (!serial) return false;
  const Camera* camera = FindBySerial(*serial);
  if (camera == nullptr) return AnswerNoSuchCamera(peer, frame, *serial);
  RemoveCamera(camera->status.id);
  return Answer(peer, frame.tag, bus::Kind::kOk);
}

bool Bus::Status(PeerId peer, const bus::Frame& frame) {
  if (!frame.payload.empty()) return false;
  std::vector<bus::CameraStatus> list;
  for (const auto& [id, camera] : cameras_) list.push_back(camera.status);
  return Answer(peer, frame.tag, bus::Kind::kOk, bus::Encode(list));
}

bool Bus::Fault(PeerId peer, const bus::Frame& frame) {
  const auto request = bus::Decode<bus::FaultRequest>(frame.payload);
  if (!request) return false;
  const Camera* camera = FindBySerial(request->serial);
  if (camera == nullptr) return AnswerNoSuchCamera(peer, frame, request->serial);
  const auto kind = FaultByName(request->name);
  if (request->name == "none") {
    camera->device->Disarm();
  } else if (kind) {
    camera->device->Arm({*kind, request->at});
  } else {
    return AnswerError(peer, frame.tag, bus::ErrorCode::kRefused,
                       "There is no fault " + request->name + "; choose one of " + FaultNames() + ", or none.");
  }
  return Answer(peer, frame.tag, bus::Kind::kOk);
}

bool Bus::StartSession(PeerId peer, const bus::Frame& frame) {
  const auto id = bus::Decode<std::uint32_t>(frame.payload);
  if (!id || peers_[peer].session != 0) return false;
  const auto found = cameras_.find(*id);
  if (found == cameras_.end()) {
    return AnswerError(peer, frame.tag, bus::ErrorCode::kNoSuchCamera,
                       "That camera has been unplugged; plug it in again.");
  }
  Camera& camera = found->second;
  if (!camera.device->StartSession()) {
    return AnswerError(peer, frame.tag, bus::ErrorCode::kBusy,
                       "Camera " + camera.status.serial + " is in use by process " +
                           std::to_string(camera.status.holder) + "; wait until it is done.");
  }
  camera.holder = peer;
  camera.status.holder = static_cast<std::uint32_t>(peers_[peer].process);
  peers_[peer].session = *id;
  return Answer(peer, frame.tag, bus::Kind::kOk);
}

bool Bus::EndSession(PeerId peer, const bus::Frame& frame) {
  if (!frame.payload.empty()) return false;
  DropSession(peer);
  return Answer(peer, frame.tag, bus::Kind::kOk);
}

bool Bus::RunCommand(PeerId peer, const bus::Frame& frame) {
  const auto command = bus::Decode<wire::Command>(frame.payload);
  Peer& from = peers_[peer];
  // A host that sends another command has given up on the previous one. If the previous command still runs, its answer
  // goes out under its own tag. The limit keeps a peer from piling up commands.
  from.unfinished -= DropHeld(peer);
  if (!command || from.unfinished >= kMaxUnfinished) return false;
  const auto found = cameras_.find(from.session);
  if (found == cameras_.end()) {
    // For the host, having no session and a camera that has left the bus are the same.
    return Answer(peer, frame.tag, bus::Kind::kReply, bus::Encode(wire::EndedBy(wire::Transport::kGone)));
  }
  Camera& camera = found->second;
  ++camera.status.commands;
  ++from.unfinished;
  if (cameras_.size() == 1 && IsPrompt(*command) && camera.worker->Idle()) {
    Settle({peer, frame.tag, from.session, camera.device->Execute(*command)});
    return true;
  }
  Job job{peer, frame.tag, from.session, *command, {command->data.begin(), command->data.end()}};
  camera.worker->Put(std::move(job));
  return true;
}

}  // namespace vcam::server

// What each request of a peer does. A function returns false for a malformed request, which ends the connection.
#include <exception>

#include "vcam/faults/Fault.h"
#include "vcam/server/Bus.h"

namespace vcam::server {
namespace {

constexpr std::size_t kMaxUnfinished = 4;
constexpr std::size_t kMaxSerial = 126;  // what a USB string descriptor holds

bus::CameraStatus StatusOf(std::uint32_t id, const Options& options) {
  bus::CameraStatus status;
  status.id = id;
  status.serial = options.serial;
  status.vendor = options.vendor;
  status.product = options.product;
  status.revision = options.revision;
  status.storage = options.storage.string();
  status.peripheralType = options.peripheralType;
  return status;
}

}  // namespace

bool Bus::Handle(PeerId peer, const bus::Frame& frame) {
  if (frame.kind != bus::Kind::kHello && !peers_[peer].greeted) return false;
  switch (frame.kind) {
    case bus::Kind::kHello:
      return Greet(peer, frame);
    case bus::Kind::kSubscribe:
      return Subscribe(peer, frame);
    case bus::Kind::kPlug:
      return Plug(peer, frame);
    case bus::Kind::kUnplug:
      return Unplug(peer, frame);
    case bus::Kind::kStatus:
      return Status(peer, frame);
    case bus::Kind::kFault:
      return Fault(peer, frame);
    case bus::Kind::kStartSession:
      return StartSession(peer, frame);
    case bus::Kind::kEndSession:
      return EndSession(peer, frame);
    case bus::Kind::kCommand:
      return RunCommand(peer, frame);
    default:
      return false;
  }
}

bool Bus::Greet(PeerId peer, const bus::Frame& frame) {
  const auto version = bus::DecodeNumber(frame.payload);
  if (!version) return false;
  if (*version != bus::kProtocolVersion) {
    AnswerError(peer, frame.tag, bus::ErrorCode::kRefused,
                "This bus speaks version " + std::to_string(bus::kProtocolVersion) + " of its protocol, not version " +
                    std::to_string(*version) + "; use programs of one release.");
    return true;
  }
  peers_[peer].greeted = true;
  Answer(peer, frame.tag, bus::Kind::kOk);
  return true;
}

bool Bus::Subscribe(PeerId peer, const bus::Frame& frame) {
  if (!frame.payload.empty()) return false;
  for (const auto& [id, camera] : cameras_) Answer(peer, 0, bus::Kind::kPlugged, bus::Encode(camera.status));
  peers_[peer].subscribed = true;
  Answer(peer, frame.tag, bus::Kind::kOk);
  return true;
}

bool Bus::Plug(PeerId peer, const bus::Frame& frame) {
  const auto request = bus::DecodePlug(frame.payload);
  if (!request) return false;
  if (request->serial.empty() || request->serial.size() > kMaxSerial) {
    AnswerError(peer, frame.tag, bus::ErrorCode::kRefused,
                "A serial number has 1 to " + std::to_string(kMaxSerial) + " characters; give another one.");
  } else if (FindBySerial(request->serial) != nullptr) {
    AnswerError(peer, frame.tag, bus::ErrorCode::kBusy,
                "Camera " + request->serial + " is plugged in already; unplug it first or use another serial number.");
  } else {
    AddCamera(peer, frame, *request);
  }
  return true;
}

void Bus::AddCamera(PeerId peer, const bus::Frame& frame, const bus::PlugRequest& request) {
  Options options;
  options.serial = request.serial;
  options.storage = request.storage;
  options.peripheralType = request.peripheralType;
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
    Answer(peer, frame.tag, bus::Kind::kOk, bus::EncodeNumber(nextCamera_++));
  } catch (const std::exception& error) {
    AnswerError(peer, frame.tag, bus::ErrorCode::kRefused, error.what());
  }
}

std::string Bus::NoSuchCamera(const std::string& serial) const {
  return "No camera " + serial + " is plugged in; `kelva-vcam status` lists those that are.";
}

bool Bus::Unplug(PeerId peer, const bus::Frame& frame) {
  const auto serial = bus::DecodeText(frame.payload);
  if (!serial) return false;
  const Camera* camera = FindBySerial(*serial);
  if (camera == nullptr) {
    AnswerError(peer, frame.tag, bus::ErrorCode::kNoSuchCamera, NoSuchCamera(*serial));
    return true;
  }
  RemoveCamera(camera->status.id);
  Answer(peer, frame.tag, bus::Kind::kOk);
  return true;
}

bool Bus::Status(PeerId peer, const bus::Frame& frame) {
  if (!frame.payload.empty()) return false;
  std::vector<bus::CameraStatus> list;
  for (const auto& [id, camera] : cameras_) list.push_back(camera.status);
  Answer(peer, frame.tag, bus::Kind::kOk, bus::Encode(list));
  return true;
}

bool Bus::Fault(PeerId peer, const bus::Frame& frame) {
  const auto request = bus::DecodeFault(frame.payload);
  if (!request) return false;
  const Camera* camera = FindBySerial(request->serial);
  const auto kind = FaultByName(request->name);
  if (camera == nullptr) {
    AnswerError(peer, frame.tag, bus::ErrorCode::kNoSuchCamera, NoSuchCamera(request->serial));
  } else if (request->name == "none") {
    camera->device->Disarm();
    Answer(peer, frame.tag, bus::Kind::kOk);
  } else if (!kind) {
    AnswerError(peer, frame.tag, bus::ErrorCode::kRefused,
                "There is no fault " + request->name + "; choose one of " + FaultNames() + ", or none.");
  } else {
    camera->device->Arm({*kind, request->at});
    Answer(peer, frame.tag, bus::Kind::kOk);
  }
  return true;
}

bool Bus::StartSession(PeerId peer, const bus::Frame& frame) {
  const auto id = bus::DecodeNumber(frame.payload);
  if (!id || peers_[peer].session != 0) return false;
  const auto found = cameras_.find(*id);
  if (found == cameras_.end()) {
    AnswerError(peer, frame.tag, bus::ErrorCode::kNoSuchCamera, "That camera has been unplugged; plug it in again.");
    return true;
  }
  Camera& camera = found->second;
  if (!camera.device->StartSession()) {
    AnswerError(peer, frame.tag, bus::ErrorCode::kBusy,
                "Camera " + camera.status.serial + " is in use by process " + std::to_string(camera.status.holder) +
                    "; wait until it is done.");
    return true;
  }
  camera.holder = peer;
  camera.status.holder = static_cast<std::uint32_t>(peers_[peer].process);
  peers_[peer].session = *id;
  Answer(peer, frame.tag, bus::Kind::kOk);
  return true;
}

bool Bus::EndSession(PeerId peer, const bus::Frame& frame) {
  if (!frame.payload.empty()) return false;
  DropSession(peer);
  Answer(peer, frame.tag, bus::Kind::kOk);
  return true;
}

bool Bus::RunCommand(PeerId peer, const bus::Frame& frame) {
  const auto command = bus::DecodeCommand(frame.payload);
  Peer& from = peers_[peer];
  // A host that sends another command has given up on the last one. If that one still runs, its answer goes out under
  // its own tag. The limit keeps a peer from piling up commands.
  from.unfinished -= DropHeld(peer);
  if (!command || from.unfinished >= kMaxUnfinished) return false;
  const auto found = cameras_.find(from.session);
  if (found == cameras_.end()) {
    // No session, or its camera has left the bus: the same to the host.
    Answer(peer, frame.tag, bus::Kind::kReply, bus::Encode(wire::EndedBy(wire::Transport::kGone)));
    return true;
  }
  ++found->second.status.commands;
  ++from.unfinished;
  Job job{peer, frame.tag, from.session, *command, {command->data.begin(), command->data.end()}};
  found->second.worker->Put(std::move(job));
  return true;
}

}  // namespace vcam::server

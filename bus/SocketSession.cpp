// A session with a camera that lives in another process.
#include "bus/SocketSession.h"

#include <IOKit/IOReturn.h>

#include <optional>
#include <utility>

#include "bus/BusConnection.h"

namespace bus {
namespace {

class SocketSession : public CommandSession {
 public:
  SocketSession(std::string path, std::uint32_t camera) : path_(std::move(path)), camera_(camera) {}

  int Start() override {
    try {
      connection_.emplace(path_);
      connection_->Request(Kind::kStartSession, EncodeNumber(camera_));
      return kIOReturnSuccess;
    } catch (const BusRefusal& refusal) {
      connection_.reset();
      return refusal.code == ErrorCode::kBusy ? kIOReturnExclusiveAccess : kIOReturnNoDevice;
    } catch (const std::runtime_error&) {
      connection_.reset();
      return kIOReturnNoDevice;
    }
  }

  void End() override {
    // Waits for the answer: afterwards another process must find the camera free.
    if (connection_) connection_->Request(Kind::kEndSession, {}, std::chrono::seconds(1));
    connection_.reset();
  }

  wire::Reply Execute(const wire::Command& command, std::chrono::milliseconds timeout) override {
    if (!connection_) return wire::EndedBy(wire::Transport::kGone);
    const auto answer = connection_->Request(Kind::kCommand, Encode(command), timeout);
    // An answer that comes too late has this command's tag and is dropped.
    if (!answer) return wire::EndedBy(connection_->Ended() ? wire::Transport::kGone : wire::Transport::kHang);
    std::optional<wire::Reply> reply = Decode<wire::Reply>(answer->payload);
    return answer->kind == Kind::kReply && reply ? std::move(*reply) : wire::EndedBy(wire::Transport::kGone);
  }

 private:
  std::string path_;
  std::uint32_t camera_;
  std::optional<BusConnection> connection_;
};

}  // namespace

std::unique_ptr<CommandSession> MakeSocketSession(const std::string& path, std::uint32_t camera) {
  return std::make_unique<SocketSession>(path, camera);
}

}  // namespace bus

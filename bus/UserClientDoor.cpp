// Plays the kernel driver's user client over a virtual camera.
#include "bus/UserClientDoor.h"

#include <IOKit/IOReturn.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "wire/TransferStatus.h"
#include "wire/UserClientRecords.h"

namespace bus {
namespace {

// Host status of a pipe that halted, as the SCSI layer numbers it.
constexpr std::uint8_t kHostError = 7;

wire::Direction DirectionOf(const wire::UserClientTransferRequest& request) {
  const auto direction = static_cast<wire::Direction>(request.direction);
  return direction == wire::Direction::kToCamera || direction == wire::Direction::kFromCamera ? direction
                                                                                              : wire::Direction::kNone;
}

bool IsUsable(const wire::UserClientTransferRequest& request) {
  if (request.cdbLength != sizeof request.cdb) return false;
  if (DirectionOf(request) == wire::Direction::kNone) return true;
  return request.length >= 0 && (request.length == 0 || request.bufferAddress != 0);
}

std::uint8_t* BufferOf(const wire::UserClientTransferRequest& request) {
  return reinterpret_cast<std::uint8_t*>(static_cast<std::uintptr_t>(request.bufferAddress));
}

wire::Command CommandOf(const wire::UserClientTransferRequest& request) {
  wire::Command command;
  std::copy(std::begin(request.cdb), std::end(request.cdb), command.cdb.begin());
  command.direction = DirectionOf(request);
  if (command.direction == wire::Direction::kNone) return command;
  command.length = static_cast<std::uint32_t>(request.length);
  // The camera refuses longer data phases, so their memory is not read.
  if (command.direction == wire::Direction::kToCamera && command.length <= wire::kMaxTransferLength) {
    command.data = {BufferOf(request), command.length};
  }
  return command;
}

std::uint32_t StatusOf(const wire::Reply& reply) {
  if (reply.transport == wire::Transport::kStall) return wire::TransportResultStatus(kHostError, 0);
  if (reply.status == wire::kScsiGood) return 0;
  return wire::ScsiResultStatus(reply.status, reply.sense);
}

int ReturnCodeOf(const wire::Reply& reply) {
  if (reply.transport == wire::Transport::kGone) return kIOReturnNoDevice;
  return reply.transport == wire::Transport::kHang ? kIOReturnTimeout : kIOReturnSuccess;
}

class UserClientDoor : public darwin::UserClient {
 public:
  explicit UserClientDoor(std::unique_ptr<CommandSession> session) : session_(std::move(session)) {}
  ~UserClientDoor() override { EndSession(); }

  int CallScalar(std::uint32_t selector) override {
    if (selector == wire::kUserClientStartSession) return StartSession();
    if (selector == wire::kUserClientEndSession) return EndSession();
    return kIOReturnBadArgument;
  }

  int CallStruct(std::uint32_t selector, const void* in, std::size_t inSize, void* out, std::size_t* outSize) override {
    wire::UserClientTransferRequest request;
    if (selector != wire::kUserClientTransfer || in == nullptr || inSize != sizeof request || out == nullptr ||
        outSize == nullptr || *outSize < sizeof(wire::UserClientTransferResult)) {
      return kIOReturnBadArgument;
    }
    std::memcpy(&request, in, sizeof request);
    wire::UserClientTransferResult result{};
    const int code = Transfer(request, result);
    if (code != kIOReturnSuccess) return code;
    std::memcpy(out, &result, sizeof result);
    *outSize = sizeof result;
    return kIOReturnSuccess;
  }

 private:
  int StartSession() {
    if (started_) return kIOReturnExclusiveAccess;
    const int code = session_->Start();
    started_ = code == kIOReturnSuccess;
    return code;
  }

  int EndSession() {
    if (!std::exchange(started_, false)) return kIOReturnNotOpen;
    session_->End();
    return kIOReturnSuccess;
  }

  int Transfer(const wire::UserClientTransferRequest& request, wire::UserClientTransferResult& result) {
    if (!started_) return kIOReturnNotOpen;
    if (!IsUsable(request)) return kIOReturnBadArgument;
    const std::uint32_t timeout = request.timeout;  // a copy: the record is packed, and its fields have no alignment
    const wire::Reply reply = session_->Execute(CommandOf(request), std::chrono::seconds(timeout));
    if (DirectionOf(request) == wire::Direction::kFromCamera) {
      const auto room = static_cast<std::size_t>(request.length);
      std::copy_n(reply.data.begin(), std::min(reply.data.size(), room), BufferOf(request));
    }
    result.status = StatusOf(reply);
    result.actualLength = static_cast<std::int32_t>(reply.moved);
    return ReturnCodeOf(reply);
  }

  std::unique_ptr<CommandSession> session_;
  bool started_ = false;
};

}  // namespace

std::unique_ptr<darwin::UserClient> MakeUserClient(std::unique_ptr<CommandSession> session) {
  return std::make_unique<UserClientDoor>(std::move(session));
}

}  // namespace bus

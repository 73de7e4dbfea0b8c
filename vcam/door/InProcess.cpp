#include "vcam/door/InProcess.h"

#include <IOKit/IOReturn.h>

#include <algorithm>
#include <utility>

namespace vcam {
namespace {

Reply Ended(Transport transport) {
  Reply reply;
  reply.transport = transport;
  return reply;
}

class InProcessSession : public CommandSession {
 public:
  explicit InProcessSession(std::shared_ptr<VirtualCamera> camera) : camera_(std::move(camera)) {}

  int Start() override {
    if (camera_->Gone()) return kIOReturnNoDevice;
    return camera_->StartSession() ? kIOReturnSuccess : kIOReturnExclusiveAccess;
  }

  void End() override { camera_->EndSession(); }

  Reply Execute(const Command& command, std::chrono::milliseconds timeout) override {
    Reply reply = camera_->Execute(command);
    if (reply.transport == Transport::kHang || reply.delay > timeout)
      return Ended(camera_->WaitForUnplug(timeout) ? Transport::kGone : Transport::kHang);
    if (reply.delay.count() > 0 && camera_->WaitForUnplug(reply.delay)) return Ended(Transport::kGone);
    return reply;
  }

 private:
  std::shared_ptr<VirtualCamera> camera_;
};

}  // namespace

std::unique_ptr<CommandSession> MakeInProcessSession(std::shared_ptr<VirtualCamera> camera) {
  return std::make_unique<InProcessSession>(std::move(camera));
}

std::function<std::unique_ptr<darwin::UserClient>(int&)> OpenInProcess(std::shared_ptr<VirtualCamera> camera) {
  return [camera = std::move(camera)](int& error) {
    error = kIOReturnSuccess;
    return MakeUserClient(MakeInProcessSession(camera));
  };
}

}  // namespace vcam

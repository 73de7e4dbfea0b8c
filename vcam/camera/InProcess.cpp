// A session with a camera of this process. It waits as long as the reply says that the command takes.
#include "vcam/camera/InProcess.h"

#include <IOKit/IOReturn.h>

#include <algorithm>
#include <utility>

namespace vcam {
namespace {

class InProcessSession : public bus::CommandSession {
 public:
  explicit InProcessSession(std::shared_ptr<VirtualCamera> camera) : camera_(std::move(camera)) {}

  int Start() override {
    if (camera_->Gone()) return kIOReturnNoDevice;
    return camera_->StartSession() ? kIOReturnSuccess : kIOReturnExclusiveAccess;
  }

  void End() override { camera_->EndSession(); }

  wire::Reply Execute(const wire::Command& command, std::chrono::milliseconds timeout) override {
    wire::Reply reply = camera_->Execute(command);
    if (reply.transport == wire::Transport::kHang || reply.delay > timeout) {
      return wire::EndedBy(camera_->WaitForUnplug(timeout) ? wire::Transport::kGone : wire::Transport::kHang);
    }
    if (reply.delay.count() > 0 && camera_->WaitForUnplug(reply.delay)) return wire::EndedBy(wire::Transport::kGone);
    return reply;
  }

 private:
  std::shared_ptr<VirtualCamera> camera_;
};

}  // namespace

std::unique_ptr<bus::CommandSession> MakeInProcessSession(std::shared_ptr<VirtualCamera> camera) {
  return std::make_unique<InProcessSession>(std::move(camera));
}

std::function<std::unique_ptr<darwin::UserClient>(int&)> OpenInProcess(std::shared_ptr<VirtualCamera> camera) {
  return [camera = std::move(camera)](int& error) {
    error = kIOReturnSuccess;
    return bus::MakeUserClient(MakeInProcessSession(camera));
  };
}

}  // namespace vcam

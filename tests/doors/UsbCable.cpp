#include "tests/doors/UsbCable.h"

#include <IOKit/IOReturn.h>
#include <sys/socket.h>

#include <array>
#include <stdexcept>
#include <utility>

namespace tests::doors {
namespace {

constexpr auto kSpeed = vcam::usbip::Speed::kHigh;

/// Both ends of a new cable: the first is kept in `kept`, the second one given back.
base::FileDescriptor OtherEnd(base::FileDescriptor& kept) {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) throw std::runtime_error("no sockets");
  kept = base::FileDescriptor(ends[0]);
  return base::FileDescriptor(ends[1]);
}

std::uint32_t Device() {
  return vcam::usbip::OfferOf(kSpeed).DeviceId();
}

class CableSession : public bus::CommandSession {
 public:
  explicit CableSession(std::shared_ptr<UsbCable> cable) : cable_(std::move(cable)) {}

  int Start() override {
    if (cable_->camera().Gone()) return kIOReturnNoDevice;
    return cable_->camera().StartSession() ? kIOReturnSuccess : kIOReturnExclusiveAccess;
  }
  void End() override { cable_->camera().EndSession(); }
  wire::Reply Execute(const wire::Command& command, std::chrono::milliseconds timeout) override {
    return cable_->host().Execute(command, timeout);
  }

 private:
  std::shared_ptr<UsbCable> cable_;
};

}  // namespace

std::shared_ptr<UsbCable> UsbCable::Make(vcam::Options options) {
  return std::shared_ptr<UsbCable>(new UsbCable(std::move(options)));
}

UsbCable::UsbCable(vcam::Options options)
    : camera_(std::move(options)),
      usb_(vcam::usbip::ModelOf(camera_, faults_, kSpeed)),
      session_(OtherEnd(hostEnd_), Device(), usb_),
      server_([this] { session_.Run(); }),
      host_(std::move(hostEnd_), Device()) {
  if (!host_.Configure()) throw std::runtime_error("the camera does not take its configuration");
}

UsbCable::~UsbCable() {
  Pull();
}

void UsbCable::Pull() {
  camera_.Unplug();
  session_.Pull();
  // Here and not at the end: who still holds a camera that has gone keeps the cable.
  const std::scoped_lock lock(ending_);
  if (server_.joinable()) server_.join();
}

std::unique_ptr<bus::CommandSession> UsbCable::MakeSession() {
  return std::make_unique<CableSession>(shared_from_this());
}

}  // namespace tests::doors

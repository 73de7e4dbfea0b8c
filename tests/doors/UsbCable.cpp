#include "tests/doors/UsbCable.h"

#include <sys/socket.h>

#include <array>
#include <stdexcept>
#include <utility>

#include "tests/doors/UsbHost.h"

namespace kelva::doors {
namespace {

constexpr auto kSpeed = vcam::usbip::Speed::kHigh;

/// Both ends of a new cable: the first is kept in `kept`, the second one given back.
vcam::FileDescriptor OtherEnd(vcam::FileDescriptor& kept) {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) throw std::runtime_error("no sockets");
  kept = vcam::FileDescriptor(ends[0]);
  return vcam::FileDescriptor(ends[1]);
}

std::uint32_t Device() {
  return vcam::usbip::OfferOf(kSpeed).DeviceId();
}

}  // namespace

UsbCable::UsbCable(vcam::Options options)
    : camera_(std::move(options)),
      usb_(vcam::usbip::ModelOf(camera_, faults_, kSpeed)),
      session_(OtherEnd(hostEnd_), Device(), usb_),
      server_([this] { session_.Run(); }) {}

UsbCable::~UsbCable() {
  session_.Pull();
  server_.join();
}

std::unique_ptr<vcam::CommandSession> UsbCable::MakeSession() {
  return std::make_unique<UsbHost>(std::move(hostEnd_), Device());
}

}  // namespace kelva::doors

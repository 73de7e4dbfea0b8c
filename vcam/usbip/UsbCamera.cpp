// Hands the transfers of the USB host to the pipe that they belong to.
#include "vcam/usbip/UsbCamera.h"

#include <algorithm>

namespace vcam::usbip {
namespace {

// A storage driver has a handful of transfers under way.
constexpr std::size_t kMostPending = 1024;
constexpr std::uint8_t kBulkInAddress = 0x80 | kBulkIn;

}  // namespace

UsbCamera::UsbCamera(CameraModel model)
    : unit_(model.inquiry, model.identity.serial, std::move(model.execute)),
      bulk_(unit_, std::move(model.faults)),
      control_(std::move(model.identity), *this) {}

void UsbCamera::Submit(usbip::Submit submit, Clock::time_point now) {
  if (submit.endpoint == 0) {
    Control(submit);
  } else if (!control_.Configured()) {
    Finish(submit, {.status = kUrbStall});
  } else if (submit.endpoint == kBulkOut && !submit.in) {
    const std::int32_t status = bulk_.Give(submit.data, now);
    Finish(submit, {status, status == kUrbOk ? submit.length : 0, {}, false});
  } else if (submit.endpoint == kBulkIn && submit.in) {
    if (waiting_.size() >= kMostPending) {
      throw ProtocolError("The USB/IP host asked for more transfers at once than any driver; it was disconnected.");
    }
    waiting_.push_back({submit.sequence, submit.length});
  } else {
    Finish(submit, {.status = kUrbStall});
  }
}

void UsbCamera::Control(const usbip::Submit& submit) {
  auto answer = control_.Handle(submit.setup, submit.data);
  if (!answer || answer->size() > (submit.in ? submit.length : 0)) return Finish(submit, {.status = kUrbStall});
  const auto moved = submit.in ? static_cast<std::uint32_t>(answer->size()) : submit.length;
  Finish(submit, {kUrbOk, moved, std::move(*answer), false});
}

void UsbCamera::Finish(const usbip::Submit& submit, Taken result) {
  finished_.push_back({submit.sequence, submit.in, std::move(result)});
}

bool UsbCamera::Unlink(std::uint32_t sequence) {
  const auto found = std::find_if(waiting_.begin(), waiting_.end(),
                                  [&](const Pending& pending) { return pending.sequence == sequence; });
  if (found == waiting_.end()) return false;
  waiting_.erase(found);
  return true;
}

std::optional<Finished> UsbCamera::Next(Clock::time_point now) {
  if (!finished_.empty()) {
    Finished next = std::move(finished_.front());
    finished_.pop_front();
    return next;
  }
  if (waiting_.empty()) return std::nullopt;
  auto taken = bulk_.Take(waiting_.front().length, now);
  if (!taken) return std::nullopt;
  Finished next{waiting_.front().sequence, true, std::move(*taken)};
  waiting_.pop_front();
  return next;
}

void UsbCamera::ResetTransport() {
  bulk_.Reset();
}

void UsbCamera::ResetAll() {
  bulk_.Reset();
  bulk_.SetHaltIn(false);
  bulk_.SetHaltOut(false);
}

void UsbCamera::SetHalt(std::uint8_t address, bool halted) {
  if (address == kBulkInAddress) bulk_.SetHaltIn(halted);
  if (address == kBulkOut) bulk_.SetHaltOut(halted);
}

bool UsbCamera::Halted(std::uint8_t address) const {
  if (address == kBulkInAddress) return bulk_.HaltedIn();
  return address == kBulkOut && bulk_.HaltedOut();
}

}  // namespace vcam::usbip

// The virtual camera: commands pass its faults and its device one at a time, while other threads arm faults and unplug.
#include "vcam/camera/VirtualCamera.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

#include "vcam/device/Device.h"
#include "vcam/device/Handlers.h"
#include "vcam/faults/FaultPlan.h"

namespace vcam {

struct VirtualCamera::State {
  explicit State(Options options) : device(std::move(options)) {}

  wire::Reply Run(const wire::Command& command) {
    TakeArmed();
    if (std::optional<wire::Reply> instead = faults.Next()) return std::move(*instead);
    const wire::Command given = faults.Limit(command);
    wire::Reply reply = Dispatch(device, given);
    if (reply.Good()) ++device.doneCount;
    faults.Apply(given, device.selected ? &device.selected->data.marks : nullptr, reply);
    return reply;
  }

  void TakeArmed() {
    const std::lock_guard lock(mutex);
    if (disarmed) faults = FaultPlan();
    if (disarmed) device.nextUpgradeFails = false;
    for (const Fault& fault : armed) {
      device.nextUpgradeFails = device.nextUpgradeFails || fault.kind == FaultKind::kUpgradeFails;
      if (fault.kind != FaultKind::kUpgradeFails) faults.Arm(fault);
    }
    disarmed = false;
    armed.clear();
  }

  // Held while a command runs, which may take long: a file may be hashed.
  std::mutex running;
  Device device;
  FaultPlan faults;

  // Held only briefly. Guards what other threads change while a command runs.
  mutable std::mutex mutex;
  mutable std::condition_variable unplugged;
  std::vector<Fault> armed;
  bool disarmed = false;
  bool gone = false;
  bool inSession = false;
};

namespace {

/// Blank-padded text of INQUIRY data.
void PutPadded(std::span<std::uint8_t> field, std::string_view text) {
  std::fill(field.begin(), field.end(), std::uint8_t{' '});
  std::copy_n(text.begin(), std::min(text.size(), field.size()), field.begin());
}

}  // namespace

VirtualCamera::VirtualCamera(Options options) : state_(std::make_unique<State>(std::move(options))) {
  state_->device.console.Log("started, serial " + state_->device.options.serial);
}

VirtualCamera::~VirtualCamera() = default;

wire::Reply VirtualCamera::Execute(const wire::Command& command) {
  const std::lock_guard lock(state_->running);
  if (Gone()) return wire::EndedBy(wire::Transport::kGone);
  wire::Reply reply = state_->Run(command);
  if (reply.transport == wire::Transport::kGone) Unplug();
  return reply;
}

void VirtualCamera::Arm(const Fault& fault) {
  const std::lock_guard lock(state_->mutex);
  state_->armed.push_back(fault);
}

void VirtualCamera::Disarm() {
  const std::lock_guard lock(state_->mutex);
  state_->armed.clear();
  state_->disarmed = true;
}

bool VirtualCamera::StartSession() {
  const std::lock_guard lock(state_->mutex);
  return !std::exchange(state_->inSession, true);
}

void VirtualCamera::EndSession() {
  const std::lock_guard lock(state_->mutex);
  state_->inSession = false;
}

void VirtualCamera::Unplug() {
  const std::lock_guard lock(state_->mutex);
  state_->gone = true;
  state_->unplugged.notify_all();
}

bool VirtualCamera::Gone() const {
  const std::lock_guard lock(state_->mutex);
  return state_->gone;
}

bool VirtualCamera::WaitForUnplug(std::chrono::milliseconds atMost) const {
  std::unique_lock lock(state_->mutex);
  return state_->unplugged.wait_for(lock, atMost, [this] { return state_->gone; });
}

const Options& VirtualCamera::GetOptions() const {
  return state_->device.options;
}

std::array<std::uint8_t, 36> VirtualCamera::InquiryData() const {
  const Options& options = state_->device.options;
  constexpr std::uint8_t kRemovable = 0x80;
  constexpr std::uint8_t kSpc2 = 0x04;
  std::array<std::uint8_t, 36> data{static_cast<std::uint8_t>(options.peripheralType & 0x1F), kRemovable, kSpc2, 2, 31};
  const std::span<std::uint8_t> out(data);
  PutPadded(out.subspan(8, 8), options.vendor);
  PutPadded(out.subspan(16, 16), options.product);
  PutPadded(out.subspan(32, 4), options.revision);
  return data;
}

}  // namespace vcam

// The bulk-only transport as a device speaks it. Its phases follow the host; faults and halts break them on purpose.
#include "vcam/usbip/BulkOnly.h"

#include <algorithm>

#include "vcam/usbip/Messages.h"

namespace vcam::usbip {
namespace {

constexpr std::uint32_t kImpossibleResidue = 0x7FFFFFFF;
constexpr std::uint32_t kAnotherTag = 0x5A5A5A5A;

}  // namespace

std::int32_t BulkOnly::Give(std::span<const std::uint8_t> bytes, Clock::time_point now) {
  if (haltedOut_) return kUrbStall;
  switch (phase_) {
    case Phase::kCommand:
      return Begin(bytes, now);
    case Phase::kDataOut:
      return Collect(bytes, now);
    default:
      // The host writes while we owe it data or a status: we disagree about the phase.
      return HaltBoth();
  }
}

std::int32_t BulkOnly::Begin(std::span<const std::uint8_t> bytes, Clock::time_point now) {
  const auto command = DecodeCommand(bytes);
  // The answer of the standard to an invalid wrapper: it has no tag that a status could name.
  if (!command || command->length > wire::kMaxTransferLength) return HaltBoth();
  command_ = *command;
  data_.clear();
  if (command_.direction == wire::Direction::kToCamera) {
    phase_ = Phase::kDataOut;
    return kUrbOk;
  }
  RunCommand(now);
  return kUrbOk;
}

std::int32_t BulkOnly::Collect(std::span<const std::uint8_t> bytes, Clock::time_point now) {
  if (bytes.size() > command_.length - data_.size()) return HaltBoth();
  data_.insert(data_.end(), bytes.begin(), bytes.end());
  if (data_.size() < command_.length) return kUrbOk;
  RunCommand(now);
  if (!stall_) return kUrbOk;
  // The stall ends this data phase. The host clears the pipe and then asks for the status.
  stall_ = false;
  haltedOut_ = true;
  return kUrbStall;
}

std::int32_t BulkOnly::HaltBoth() {
  broken_ = haltedIn_ = haltedOut_ = true;
  return kUrbStall;
}

void BulkOnly::RunCommand(Clock::time_point now) {
  const wire::Command command{command_.cdb, command_.direction, command_.length, data_};
  Settle(unit_.Run(command), now);
  // Commands that the kernel sends on its own are not counted, so that --fault NAME@N means the same in every run.
  if (faults_ && IsCameraCommand(command_.cdb[0])) ApplyFault(faults_());
}

void BulkOnly::Settle(wire::Reply reply, Clock::time_point now) {
  readyAt_ = now + reply.delay;
  hang_ = reply.transport == wire::Transport::kHang;
  gone_ = reply.transport == wire::Transport::kGone;
  stall_ = reply.transport == wire::Transport::kStall;
  // A fault may claim more than was asked for. The residue then wraps, as that of a device that counts wrongly.
  status_ = {command_.tag, command_.length - reply.moved,
             reply.Good() ? WrapperStatus::kPassed : WrapperStatus::kFailed};
  data_ = std::move(reply.data);
  sent_ = 0;
  phase_ = command_.direction == wire::Direction::kFromCamera ? Phase::kDataIn : Phase::kStatus;
}

void BulkOnly::ApplyFault(CableFault fault) {
  switch (fault) {
    case CableFault::kNone:
      return;
    case CableFault::kHalfResidue:
      status_.residue = command_.length / 2;
      return;
    case CableFault::kHugeResidue:
      status_.residue = kImpossibleResidue;
      return;
    case CableFault::kZeroResidue:
      data_.resize(data_.size() / 2);
      status_.residue = 0;
      return;
    case CableFault::kSkipData:
      data_.clear();
      status_.residue = command_.length;
      phase_ = Phase::kStatus;
      return;
    case CableFault::kFailNoSense:
      data_.clear();
      status_ = {command_.tag, command_.length, WrapperStatus::kFailed};
      unit_.DropSense();
      return;
    case CableFault::kWrongTag:
      status_.tag ^= kAnotherTag;
      return;
    case CableFault::kPhaseError:
      status_.status = WrapperStatus::kPhaseError;
      return;
    case CableFault::kShortStatus:
      cutStatus_ = true;
      return;
    case CableFault::kBabble:
      data_.resize(command_.length + 1);
      return;
    case CableFault::kPull:
      data_.resize(data_.size() / 2);
      gone_ = true;
      return;
  }
}

std::optional<Taken> BulkOnly::Take(std::uint32_t length, Clock::time_point now) {
  if (haltedIn_) return Taken{.status = kUrbStall};
  if (phase_ == Phase::kCommand || phase_ == Phase::kDataOut || hang_ || now < readyAt_) return std::nullopt;
  if (stall_) return StallIn();
  return phase_ == Phase::kDataIn ? TakeData(length) : TakeStatus(length);
}

// The host finds the pipe halted, clears it, and then asks how the command ended.
Taken BulkOnly::StallIn() {
  stall_ = false;
  haltedIn_ = true;
  phase_ = Phase::kStatus;
  return {.status = kUrbStall};
}

Taken BulkOnly::TakeData(std::uint32_t length) {
  const std::size_t rest = data_.size() - sent_;
  const std::size_t part = std::min<std::size_t>(rest, length);
  const auto begin = data_.begin() + static_cast<std::ptrdiff_t>(sent_);
  Taken taken{kUrbOk, static_cast<std::uint32_t>(part), {}, false};
  if (sent_ == 0 && part == data_.size()) {
    // The usual case, up to 4 MiB: the answer is moved, not copied.
    taken.data = std::move(data_);
    data_.clear();
  } else {
    taken.data.assign(begin, begin + static_cast<std::ptrdiff_t>(part));
  }
  sent_ += part;
  const bool hostIsFull = sent_ >= command_.length;
  if (gone_ && part == rest) {
    // The header announces the whole transfer, so the host still waits for its rest when the cable is out.
    taken.actual = length;
    taken.unplug = true;
  } else if (part < rest && hostIsFull) {
    // The device had more to send than the wrapper announced.
    taken.status = kUrbBabble;
  }
  // A short transfer ends the data phase, and so does the last byte that was announced.
  if (part < length || hostIsFull) phase_ = Phase::kStatus;
  return taken;
}

Taken BulkOnly::TakeStatus(std::uint32_t length) {
  base::Bytes bytes = EncodeStatus(status_);
  if (cutStatus_) bytes.pop_back();
  cutStatus_ = false;
  phase_ = Phase::kCommand;
  if (length < bytes.size()) return {.status = kUrbBabble};
  const auto size = static_cast<std::uint32_t>(bytes.size());
  return {kUrbOk, size, std::move(bytes), false};
}

std::optional<Clock::time_point> BulkOnly::WaitsUntil(Clock::time_point now) const {
  if (phase_ == Phase::kCommand || hang_ || readyAt_ <= now) return std::nullopt;
  return readyAt_;
}

bool BulkOnly::Unplugged(Clock::time_point now) const {
  // The bytes before the pull still go out; TakeData then reports the end.
  const bool bytesLeft = phase_ == Phase::kDataIn && sent_ < data_.size();
  return gone_ && !bytesLeft && now >= readyAt_;
}

void BulkOnly::Reset() {
  // Leaves the halts: the host clears each pipe in a request of its own.
  phase_ = Phase::kCommand;
  broken_ = stall_ = hang_ = cutStatus_ = false;
  readyAt_ = {};
  data_.clear();
  sent_ = 0;
}

void BulkOnly::SetHaltIn(bool halted) {
  haltedIn_ = halted || broken_;
}

void BulkOnly::SetHaltOut(bool halted) {
  haltedOut_ = halted || broken_;
}

}  // namespace vcam::usbip

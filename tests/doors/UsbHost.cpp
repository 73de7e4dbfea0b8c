#include "tests/doors/UsbHost.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>

namespace tests::doors {
namespace {

using base::Bytes;
using wire::Command;
using wire::Direction;
using wire::Reply;

constexpr std::int32_t kStalled = -32;
constexpr std::int32_t kBabbled = -75;
constexpr std::uint8_t kIn = 1;
constexpr std::uint8_t kOut = 2;
constexpr std::size_t kHeader = 48;
constexpr std::size_t kStatusSize = 13;
constexpr std::uint8_t kSenseSize = 18;

// The sense data that the kernel makes up for a device that sends too much.
constexpr wire::Sense kTooMuch{0x05, 0x24, 0x00};

/// The cable is out, or the device has not answered by the deadline.
struct Ended {
  wire::Transport how;
};

void PutBig(Bytes& bytes, std::size_t at, std::uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i) bytes.at(at + i) = static_cast<std::uint8_t>(value >> (24 - 8 * i));
}

std::uint32_t Big(const Bytes& bytes, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) value = value << 8 | bytes.at(at + i);
  return value;
}

void PutLittle(Bytes& bytes, std::size_t at, std::uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i) bytes.at(at + i) = static_cast<std::uint8_t>(value >> (8 * i));
}

std::uint32_t Little(const Bytes& bytes, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) value |= std::uint32_t{bytes.at(at + i)} << (8 * i);
  return value;
}

Bytes Wrapped(const Command& command, std::uint32_t tag) {
  Bytes bytes(31);
  const bool in = command.direction == Direction::kFromCamera;
  std::copy_n("USBC", 4, bytes.begin());
  PutLittle(bytes, 4, tag);
  PutLittle(bytes, 8, command.direction == Direction::kNone ? 0 : command.length);
  bytes[12] = in ? 0x80 : 0;
  bytes[14] = 16;
  std::copy(command.cdb.begin(), command.cdb.end(), bytes.begin() + 15);
  return bytes;
}

Reply Refused(wire::Sense sense) {
  Reply reply;
  reply.status = wire::kScsiCheckCondition;
  reply.sense = sense;
  return reply;
}

}  // namespace

bool UsbHost::Configure() {
  deadline_ = std::chrono::steady_clock::now() + std::chrono::seconds(100);
  constexpr std::array<std::uint8_t, 8> kConfigure{0x00, 9, 1, 0, 0, 0, 0, 0};
  try {
    return Submit({0, false, 0, {}, kConfigure}).status == 0;
  } catch (const Ended&) {
    return false;
  }
}

Reply UsbHost::Execute(const Command& command, std::chrono::milliseconds timeout) {
  deadline_ = std::chrono::steady_clock::now() + timeout;
  try {
    return Run(command);
  } catch (const Ended& ended) {
    return wire::EndedBy(ended.how);
  }
}

Reply UsbHost::Run(const Command& command) {
  const Bytes wrapper = Wrapped(command, ++tag_);
  if (Submit({kOut, false, 31, wrapper, {}}).status != 0) return wire::EndedBy(wire::Transport::kStall);
  const std::uint32_t asked = command.direction == Direction::kNone ? 0 : command.length;
  Urb data = DataPhase(command);
  const Status status = ReadStatus();
  if (status.status > 1) return wire::EndedBy(wire::Transport::kStall);
  if (status.status == 1) {
    // A failure without a reason is taken for one of the transport.
    const wire::Sense sense = AskForSense();
    return sense == wire::Sense{} ? wire::EndedBy(wire::Transport::kStall) : Refused(sense);
  }
  if (data.status == kBabbled) return Refused(kTooMuch);
  // What did not arrive, or what the device says that it did not send, whichever is more.
  const std::uint32_t missing = std::max(asked - data.actual, std::min(status.residue, asked));
  Reply reply;
  reply.moved = asked - missing;
  reply.data = std::move(data.data);
  reply.data.resize(std::min<std::size_t>(reply.data.size(), reply.moved));
  return reply;
}

UsbHost::Urb UsbHost::DataPhase(const Command& command) {
  if (command.direction == Direction::kNone || command.length == 0) return {};
  if (command.direction == Direction::kFromCamera) return SubmitAndClear({kIn, true, command.length, {}, {}});
  return SubmitAndClear({kOut, false, command.length, command.data, {}});
}

// A halted status pipe is cleared and asked once more.
UsbHost::Status UsbHost::ReadStatus() {
  const Transfer transfer{kIn, true, kStatusSize, {}, {}};
  Urb urb = SubmitAndClear(transfer);
  if (urb.status == kStalled) urb = SubmitAndClear(transfer);
  constexpr std::uint8_t kDisagreement = 2;
  if (urb.status != 0 || urb.data.size() != kStatusSize) return {0, kDisagreement};
  if (!std::equal(urb.data.begin(), urb.data.begin() + 4, "USBS") || Little(urb.data, 4) != tag_) {
    return {0, kDisagreement};
  }
  return {Little(urb.data, 8), urb.data[12]};
}

wire::Sense UsbHost::AskForSense() {
  Command command;
  command.cdb[0] = 0x03;
  command.cdb[4] = kSenseSize;
  command.direction = Direction::kFromCamera;
  command.length = kSenseSize;
  const Bytes wrapper = Wrapped(command, ++tag_);
  if (Submit({kOut, false, 31, wrapper, {}}).status != 0) return {};
  const Bytes sense = DataPhase(command).data;
  if (ReadStatus().status != 0 || sense.size() != kSenseSize) return {};
  return {sense[2], sense[12], sense[13]};
}

UsbHost::Urb UsbHost::SubmitAndClear(const Transfer& transfer) {
  Urb urb = Submit(transfer);
  if (urb.status != kStalled) return urb;
  const auto address = static_cast<std::uint8_t>(transfer.endpoint | (transfer.in ? 0x80 : 0));
  const std::array<std::uint8_t, 8> clear{0x02, 1, 0, 0, address, 0, 0, 0};
  Submit({0, false, 0, {}, clear});
  return urb;
}

UsbHost::Urb UsbHost::Submit(const Transfer& transfer) {
  Bytes message(kHeader);
  PutBig(message, 0, 1);
  PutBig(message, 4, ++sequence_);
  PutBig(message, 8, device_);
  PutBig(message, 12, transfer.in ? 1 : 0);
  PutBig(message, 16, transfer.endpoint);
  PutBig(message, 24, transfer.length);
  std::copy(transfer.setup.begin(), transfer.setup.end(), message.begin() + 40);
  message.insert(message.end(), transfer.data.begin(), transfer.data.end());
  if (::send(socket_.Get(), message.data(), message.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(message.size())) {
    throw Ended{wire::Transport::kGone};
  }
  const Bytes answer = Receive(kHeader);
  Urb urb{static_cast<std::int32_t>(Big(answer, 20)), Big(answer, 24), {}};
  if (transfer.in) urb.data = Receive(std::min(urb.actual, transfer.length));
  return urb;
}

Bytes UsbHost::Receive(std::size_t size) {
  Bytes bytes(size);
  for (std::size_t have = 0; have < size;) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline_ - std::chrono::steady_clock::now()).count();
    pollfd readable{socket_.Get(), POLLIN, 0};
    if (::poll(&readable, 1, static_cast<int>(std::max<std::int64_t>(left, 0))) <= 0) {
      throw Ended{wire::Transport::kHang};
    }
    const ssize_t count = ::recv(socket_.Get(), bytes.data() + have, size - have, 0);
    if (count <= 0) throw Ended{wire::Transport::kGone};
    have += static_cast<std::size_t>(count);
  }
  return bytes;
}

}  // namespace tests::doors

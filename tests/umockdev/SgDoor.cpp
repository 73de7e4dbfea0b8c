#include "tests/umockdev/SgDoor.h"

#include <linux/fs.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <thread>

#include "tests/umockdev/HandOver.h"

namespace mock {
namespace {

constexpr unsigned short kHostTimeOut = 3;
constexpr unsigned short kHostError = 7;
// What usb-storage says of a device that sends more than it was asked for.
constexpr wire::Sense kTooMuchData{0x05, 0x24, 0x00};

wire::Direction DirectionOf(int kernelDirection) {
  if (kernelDirection == SG_DXFER_TO_DEV) return wire::Direction::kToCamera;
  if (kernelDirection == SG_DXFER_FROM_DEV) return wire::Direction::kFromCamera;
  return wire::Direction::kNone;
}

// Memory of the process that called, behind a pointer in its arguments. The parent owns it.
UMockdevIoctlData* Behind(UMockdevIoctlData* parent, std::size_t offset, std::size_t length) {
  return length == 0 ? nullptr : umockdev_ioctl_data_resolve(parent, offset, length, nullptr);
}

void Write(UMockdevIoctlData* memory, const std::uint8_t* bytes, std::size_t length) {
  if (!memory || length == 0) return;
  umockdev_ioctl_data_update(memory, 0, const_cast<guint8*>(bytes), static_cast<gint>(length));
}

void Complete(UMockdevIoctlClient* client, long result, int error) {
  GiveOver();
  umockdev_ioctl_client_complete(client, result, error);
}

// As usb-storage counts: what did not arrive, or what the device says that it did not move, whichever is more. A claim of
// more than was asked for makes a residue below nothing, which is none of the bytes.
std::uint32_t ResidueOf(const wire::Reply& reply, const sg_io_hdr_t& header) {
  const std::uint32_t asked = header.dxfer_len;
  const auto size = static_cast<std::uint32_t>(reply.data.size());
  const std::uint32_t arrived = header.dxfer_direction == SG_DXFER_FROM_DEV ? std::min(size, asked) : asked;
  return std::max(asked - arrived, std::min(asked - reply.moved, asked));
}

bool IsBabble(const wire::Reply& reply, const sg_io_hdr_t& header) {
  return header.dxfer_direction == SG_DXFER_FROM_DEV && reply.Good() && reply.data.size() > header.dxfer_len;
}

std::array<std::uint8_t, 18> FixedSense(wire::Sense sense) {
  std::array<std::uint8_t, 18> bytes{};
  bytes[0] = 0x70;
  bytes[2] = sense.key;
  bytes[7] = 10;
  bytes[12] = sense.asc;
  bytes[13] = sense.ascq;
  return bytes;
}

}  // namespace

SgDoor::SgDoor(std::shared_ptr<vcam::VirtualCamera> camera)
    : camera_(std::move(camera)), handler_(umockdev_ioctl_base_new()) {
  g_signal_connect(handler_, "handle-ioctl", G_CALLBACK(&SgDoor::OnIoctl), this);
  GiveOver();
}

SgDoor::~SgDoor() {
  g_signal_handlers_disconnect_by_data(handler_, this);
  TakeOver();
  g_object_unref(handler_);
}

gboolean SgDoor::OnIoctl(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer door) {
  TakeOver();
  static_cast<SgDoor*>(door)->Answer(client);
  GiveOver();
  return TRUE;
}

void SgDoor::Answer(UMockdevIoctlClient* client) {
  switch (umockdev_ioctl_client_get_request(client)) {
    case SG_IO:
      return AnswerCommand(client);
    case BLKSECTGET:
      return AnswerLimit(client);
    case SG_SET_RESERVED_SIZE:
      return Complete(client, 0, 0);
    default:
      return Complete(client, -1, ENOTTY);
  }
}

void SgDoor::AnswerLimit(UMockdevIoctlClient* client) {
  const int limit = largestTransfer;
  if (limit == 0) return Complete(client, -1, ENOTTY);
  UMockdevIoctlData* answer = Behind(umockdev_ioctl_client_get_arg(client), 0, sizeof limit);
  Write(answer, reinterpret_cast<const std::uint8_t*>(&limit), sizeof limit);
  Complete(client, 0, 0);
}

void SgDoor::AnswerCommand(UMockdevIoctlClient* client) {
  ++commands_;
  const int failure = gone_ ? ENODEV : error.load();
  if (failure != 0) return Complete(client, -1, failure);
  UMockdevIoctlData* arguments = Behind(umockdev_ioctl_client_get_arg(client), 0, sizeof(sg_io_hdr_t));
  sg_io_hdr_t header;
  std::memcpy(&header, arguments->data, sizeof header);
  Run(arguments, header);
  Write(arguments, reinterpret_cast<const std::uint8_t*>(&header), sizeof header);
  Complete(client, 0, 0);
}

void SgDoor::Run(UMockdevIoctlData* arguments, sg_io_hdr_t& header) {
  wire::Command command;
  UMockdevIoctlData* cdb = Behind(arguments, offsetof(sg_io_hdr_t, cmdp), header.cmd_len);
  std::memcpy(command.cdb.data(), cdb->data, std::min<std::size_t>(header.cmd_len, command.cdb.size()));
  command.direction = DirectionOf(header.dxfer_direction);
  command.length = header.dxfer_len;
  if (command.direction == wire::Direction::kToCamera) {
    UMockdevIoctlData* sent = Behind(arguments, offsetof(sg_io_hdr_t, dxferp), header.dxfer_len);
    if (sent) command.data = {sent->data, header.dxfer_len};
  }
  const wire::Reply reply = camera_->Execute(command);
  std::this_thread::sleep_for(reply.delay);
  Translate(reply, arguments, header);
}

// What a user of the real kernel sees of each ending, unplugging included: there it claims that every byte arrived.
void SgDoor::Translate(const wire::Reply& reply, UMockdevIoctlData* arguments, sg_io_hdr_t& header) {
  const bool babble = IsBabble(reply, header);
  header.status = babble ? wire::kScsiCheckCondition : reply.status;
  header.host_status = static_cast<unsigned short>(hostStatus.load());
  header.resid = static_cast<int>(ResidueOf(reply, header));
  if (reply.transport == wire::Transport::kHang) header.host_status = kHostTimeOut;
  if (reply.transport == wire::Transport::kStall) header.host_status = kHostError;
  if (reply.transport == wire::Transport::kGone) {
    header.host_status = kHostError;
    header.resid = 0;
    if (!gone_.exchange(true) && onGone) onGone();
  }
  if (header.dxfer_direction == SG_DXFER_FROM_DEV) {
    // Bytes beyond the length asked for do not reach memory.
    Write(Behind(arguments, offsetof(sg_io_hdr_t, dxferp), header.dxfer_len), reply.data.data(),
          std::min<std::size_t>(reply.data.size(), header.dxfer_len));
  }
  if (header.status == wire::kScsiCheckCondition && header.host_status == 0) {
    const auto bytes = FixedSense(babble ? kTooMuchData : reply.sense);
    header.sb_len_wr = static_cast<unsigned char>(std::min<std::size_t>(bytes.size(), header.mx_sb_len));
    header.driver_status = 8;
    Write(Behind(arguments, offsetof(sg_io_hdr_t, sbp), header.mx_sb_len), bytes.data(), header.sb_len_wr);
  }
}

}  // namespace mock

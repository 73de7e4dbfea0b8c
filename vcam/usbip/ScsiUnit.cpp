#include "vcam/usbip/ScsiUnit.h"

#include <algorithm>
#include <optional>

#include "vcam/device/Bytes.h"
#include "vcam/device/Replies.h"
#include "vcam/device/SenseCodes.h"
#include "vcam/usbip/BigEndian.h"
#include "wifi/VscRegister.h"

namespace vcam::usbip {
namespace {

enum ScsiOperation : std::uint8_t {
  kTestUnitReady = 0x00,
  kRequestSense = 0x03,
  kInquiry = 0x12,
  kModeSense6 = 0x1A,
  kReadCapacity10 = 0x25,
  kRead10 = 0x28,
  kWrite10 = 0x2A,
  kModeSense10 = 0x5A,
};

constexpr Sense kNoMedium{0x02, 0x3A, 0x00};
constexpr std::uint32_t kBlock = 512;
constexpr std::uint8_t kAllPages = 0x3F;
constexpr std::uint8_t kWriteProtected = 0x80;
constexpr auto kSelect = static_cast<std::uint8_t>(vsc::Operation::kSelect);
constexpr auto kReadChunk = static_cast<std::uint8_t>(vsc::Operation::kReadChunk);
constexpr auto kQuery = static_cast<std::uint8_t>(vsc::Operation::kQuery);

// As much of the answer as the command block has room for; the data phase bounds it once more.
Reply AnswerAtMost(const Command& command, Bytes bytes, std::size_t allocated) {
  if (bytes.size() > allocated) bytes.resize(allocated);
  return Answer(command, std::move(bytes));
}

std::uint16_t Allocated16(const Command& command, std::size_t offset) {
  return LoadBig<std::uint16_t>(command.cdb, offset);
}

Bytes SenseData(const Sense& sense) {
  Bytes bytes(18, 0);
  bytes[0] = 0x70;  // current, fixed format
  bytes[2] = sense.key;
  bytes[7] = 10;  // bytes that follow this one
  bytes[12] = sense.asc;
  bytes[13] = sense.ascq;
  return bytes;
}

}  // namespace

bool IsCameraCommand(std::uint8_t operation) {
  return operation >= static_cast<std::uint8_t>(vsc::Operation::kAction) && operation <= kQuery;
}

Reply ScsiUnit::Run(const Command& command) {
  Reply reply = Dispatch(command);
  if (reply.transport == Transport::kOk && reply.status == kStatusGood) {
    // A reason not asked for is gone with the next command that needs none.
    sense_ = {};
  } else {
    sense_ = reply.sense;
  }
  return reply;
}

Reply ScsiUnit::Dispatch(const Command& command) {
  if (!IsCameraCommand(command.cdb[0])) return OwnCommand(command);
  Reply reply = camera_(command);
  if (command.cdb[0] == kSelect && reply.Good()) {
    selection_ = command.cdb[2] >= vsc::select::kBatch ? Selection::kBundle : Selection::kPlain;
  }
  return reply;
}

Reply ScsiUnit::OwnCommand(const Command& command) {
  switch (command.cdb[0]) {
    case kTestUnitReady:
      return TestReady();
    case kRequestSense:
      return TellSense(command);
    case kInquiry:
      return (command.cdb[1] & 1) != 0 ? TellPage(command) : TellInquiry(command);
    case kModeSense6:
    case kModeSense10:
      return TellModes(command);
    case kReadCapacity10:
      return TellCapacity(command);
    case kRead10:
      return ReadBlocks(command);
    case kWrite10:
      return Refuse(sense::kWriteProtected);
    default:
      return Refuse(sense::kUnknownOperation);
  }
}

Reply ScsiUnit::TestReady() const {
  return selection_ == Selection::kNone ? Refuse(kNoMedium) : Done();
}

Reply ScsiUnit::TellSense(const Command& command) {
  const bool descriptors = (command.cdb[1] & 1) != 0;
  if (descriptors) return Refuse(sense::kBadCommandField);
  return AnswerAtMost(command, SenseData(sense_), command.cdb[4]);
}

Reply ScsiUnit::TellInquiry(const Command& command) const {
  if (command.cdb[2] != 0) return Refuse(sense::kBadCommandField);
  return AnswerAtMost(command, Bytes(inquiry_.begin(), inquiry_.end()), Allocated16(command, 3));
}

// Vital product data: the list of pages, and the unit serial number.
Reply ScsiUnit::TellPage(const Command& command) const {
  const std::uint8_t page = command.cdb[2];
  Bytes bytes{inquiry_[0], page, 0, 0};
  switch (page) {
    case 0x00:
      bytes.insert(bytes.end(), {0x00, 0x80});
      break;
    case 0x80:
      AppendText(bytes, std::string_view(serial_).substr(0, 252));
      break;
    default:
      return Refuse(sense::kBadCommandField);
  }
  bytes[3] = static_cast<std::uint8_t>(bytes.size() - 4);
  return AnswerAtMost(command, std::move(bytes), Allocated16(command, 3));
}

// The camera has no mode pages; the header alone says that it cannot be written as a disk.
Reply ScsiUnit::TellModes(const Command& command) const {
  if ((command.cdb[2] & kAllPages) != kAllPages) return Refuse(sense::kBadCommandField);
  if (command.cdb[0] == kModeSense6) return AnswerAtMost(command, {3, 0, kWriteProtected, 0}, command.cdb[4]);
  return AnswerAtMost(command, {0, 6, 0, kWriteProtected, 0, 0, 0, 0}, Allocated16(command, 7));
}

Reply ScsiUnit::TellCapacity(const Command& command) {
  if (selection_ == Selection::kNone) return Refuse(kNoMedium);
  Reply size = Query(vsc::query::kSelectedSize, 4);
  if (!size.Good() || size.data.size() != 4) return size;
  const std::uint32_t blocks =
      Load<std::uint32_t>(size.data, 0) / kBlock + (Load<std::uint32_t>(size.data, 0) % kBlock ? 1 : 0);
  if (blocks == 0) return Refuse(kNoMedium);
  Bytes bytes(8, 0);
  StoreBig(std::span<std::uint8_t>(bytes), 0, blocks - 1);
  StoreBig(std::span<std::uint8_t>(bytes), 4, kBlock);
  return Answer(command, std::move(bytes));
}

Reply ScsiUnit::ReadBlocks(const Command& command) {
  if (selection_ == Selection::kNone) return Refuse(kNoMedium);
  const std::uint64_t offset = std::uint64_t{LoadBig<std::uint32_t>(command.cdb, 2)} * kBlock;
  const std::uint32_t length = Allocated16(command, 7) * kBlock;
  if (offset + length > UINT32_MAX) return Refuse(sense::kOutOfRange);
  if (length == 0) return Done();
  Reply chunk = ReadChunk(static_cast<std::uint32_t>(offset), length);
  if (!chunk.Good()) return chunk;
  if (chunk.data.size() < length) {
    const std::size_t whole = (chunk.data.size() + kBlock - 1) / kBlock * kBlock;
    if (whole < length) return Refuse(sense::kOutOfRange);
    chunk.data.resize(whole);
  }
  return Answer(command, std::move(chunk.data));
}

Reply ScsiUnit::Query(std::uint8_t query, std::uint32_t length) {
  Command command;
  command.cdb[0] = kQuery;
  command.cdb[2] = query;
  command.direction = Direction::kFromCamera;
  command.length = length;
  return camera_(command);
}

Reply ScsiUnit::ReadChunk(std::uint32_t offset, std::uint32_t length) {
  Command command;
  command.cdb[0] = kReadChunk;
  command.cdb[2] = selection_ == Selection::kBundle ? vsc::read_chunk::kBundle : vsc::read_chunk::kSelected;
  Store(std::span<std::uint8_t>(command.cdb), 3, offset);
  command.direction = Direction::kFromCamera;
  command.length = length;
  return camera_(command);
}

}  // namespace vcam::usbip

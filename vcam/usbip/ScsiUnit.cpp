// The SCSI commands that a kernel sends to any device; the camera's own are passed on.
#include "vcam/usbip/ScsiUnit.h"

#include <algorithm>
#include <optional>

#include "base/Bytes.h"
#include "src/wifi/VscRegister.h"
#include "vcam/device/Replies.h"
#include "vcam/device/SenseCodes.h"
#include "vcam/usbip/BigEndian.h"

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

constexpr wire::Sense kNoMedium{0x02, 0x3A, 0x00};
constexpr std::uint32_t kBlock = 512;
constexpr std::uint8_t kAllPages = 0x3F;
constexpr std::uint8_t kWriteProtected = 0x80;
constexpr auto kSelect = static_cast<std::uint8_t>(kelva::Operation::kSelect);
constexpr auto kReadChunk = static_cast<std::uint8_t>(kelva::Operation::kReadChunk);
constexpr auto kQuery = static_cast<std::uint8_t>(kelva::Operation::kQuery);

// As much of the answer as the command block has room for; the data phase bounds it once more.
wire::Reply AnswerAtMost(const wire::Command& command, base::Bytes bytes, std::size_t allocated) {
  if (bytes.size() > allocated) bytes.resize(allocated);
  return Answer(command, std::move(bytes));
}

std::uint16_t Allocated16(const wire::Command& command, std::size_t offset) {
  return LoadBig<std::uint16_t>(command.cdb, offset);
}

// Current, fixed format; byte 7 counts the bytes that follow it.
base::Bytes SenseData(const wire::Sense& sense) {
  return {0x70, 0, sense.key, 0, 0, 0, 0, 10, 0, 0, 0, 0, sense.asc, sense.ascq, 0, 0, 0, 0};
}

}  // namespace

bool IsCameraCommand(std::uint8_t operation) {
  return operation >= static_cast<std::uint8_t>(kelva::Operation::kAction) && operation <= kQuery;
}

wire::Reply ScsiUnit::Run(const wire::Command& command) {
  wire::Reply reply = Dispatch(command);
  // Sense data lasts until the next command that succeeds.
  sense_ = reply.Good() ? wire::Sense{} : reply.sense;
  return reply;
}

wire::Reply ScsiUnit::Dispatch(const wire::Command& command) {
  if (!IsCameraCommand(command.cdb[0])) return OwnCommand(command);
  wire::Reply reply = camera_(command);
  if (command.cdb[0] == kSelect && reply.Good()) {
    selection_ = command.cdb[2] >= kelva::select::kBatch ? Selection::kBundle : Selection::kPlain;
  }
  return reply;
}

wire::Reply ScsiUnit::OwnCommand(const wire::Command& command) {
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

wire::Reply ScsiUnit::TestReady() const {
  return selection_ == Selection::kNone ? Refuse(kNoMedium) : Done();
}

wire::Reply ScsiUnit::TellSense(const wire::Command& command) {
  const bool wantsDescriptors = (command.cdb[1] & 1) != 0;
  if (wantsDescriptors) return Refuse(sense::kBadCommandField);
  return AnswerAtMost(command, SenseData(sense_), command.cdb[4]);
}

wire::Reply ScsiUnit::TellInquiry(const wire::Command& command) const {
  if (command.cdb[2] != 0) return Refuse(sense::kBadCommandField);
  return AnswerAtMost(command, base::Bytes(inquiry_.begin(), inquiry_.end()), Allocated16(command, 3));
}

// Vital product data: the list of pages, and the unit serial number.
wire::Reply ScsiUnit::TellPage(const wire::Command& command) const {
  const std::uint8_t page = command.cdb[2];
  base::Bytes bytes{inquiry_[0], page, 0, 0};
  switch (page) {
    case 0x00:
      bytes.insert(bytes.end(), {0x00, 0x80});
      break;
    case 0x80:
      base::AppendText(bytes, std::string_view(serial_).substr(0, 252));
      break;
    default:
      return Refuse(sense::kBadCommandField);
  }
  bytes[3] = static_cast<std::uint8_t>(bytes.size() - 4);
  return AnswerAtMost(command, std::move(bytes), Allocated16(command, 3));
}

// The camera has no mode pages; the header says that the unit cannot be written as a disk.
wire::Reply ScsiUnit::TellModes(const wire::Command& command) const {
  if ((command.cdb[2] & kAllPages) != kAllPages) return Refuse(sense::kBadCommandField);
  if (command.cdb[0] == kModeSense6) return AnswerAtMost(command, {3, 0, kWriteProtected, 0}, command.cdb[4]);
  return AnswerAtMost(command, {0, 6, 0, kWriteProtected, 0, 0, 0, 0}, Allocated16(command, 7));
}

wire::Reply ScsiUnit::TellCapacity(const wire::Command& command) {
  if (selection_ == Selection::kNone) return Refuse(kNoMedium);
  // Asked anew each time: the fault lie-size must show here too.
  wire::Reply size = Ask(kQuery, kelva::query::kSelectedSize, 0, 4);
  if (!size.Good() || size.data.size() != 4) return size;
  const auto bytesSelected = base::Load<std::uint32_t>(size.data, 0);
  const std::uint32_t blocks = bytesSelected / kBlock + (bytesSelected % kBlock != 0 ? 1 : 0);
  if (blocks == 0) return Refuse(kNoMedium);
  base::Bytes bytes;
  AppendBig(bytes, blocks - 1, kBlock);
  return Answer(command, std::move(bytes));
}

wire::Reply ScsiUnit::ReadBlocks(const wire::Command& command) {
  if (selection_ == Selection::kNone) return Refuse(kNoMedium);
  const std::uint64_t offset = std::uint64_t{LoadBig<std::uint32_t>(command.cdb, 2)} * kBlock;
  const std::uint32_t length = Allocated16(command, 7) * kBlock;
  if (offset + length > UINT32_MAX) return Refuse(sense::kOutOfRange);
  if (length == 0) return Done();
  const auto subCode = selection_ == Selection::kBundle ? kelva::read_chunk::kBundle : kelva::read_chunk::kSelected;
  wire::Reply chunk = Ask(kReadChunk, subCode, static_cast<std::uint32_t>(offset), length);
  if (!chunk.Good()) return chunk;
  if (chunk.data.size() < length) {
    // The end of the data set: its last block is filled up with zeros, and no block exists behind it.
    const std::size_t whole = (chunk.data.size() + kBlock - 1) / kBlock * kBlock;
    if (whole < length) return Refuse(sense::kOutOfRange);
    chunk.data.resize(whole);
  }
  return Answer(command, std::move(chunk.data));
}

wire::Reply ScsiUnit::Ask(std::uint8_t operation, std::uint8_t subCode, std::uint32_t offset, std::uint32_t length) {
  wire::Command command{.cdb = {operation, 0, subCode}, .direction = wire::Direction::kFromCamera, .length = length};
  base::Store(std::span<std::uint8_t>(command.cdb), kelva::at::kReadOffset, offset);
  return camera_(command);
}

}  // namespace vcam::usbip

// The messages of an attached USB/IP device, read from a stream and written.
#include "vcam/usbip/Messages.h"

#include <algorithm>
#include <string>

#include "vcam/usbip/BigEndian.h"

namespace vcam::usbip {
namespace {

constexpr std::uint32_t kSubmit = 1;
constexpr std::uint32_t kUnlink = 2;
constexpr std::uint32_t kSubmitted = 3;
constexpr std::uint32_t kUnlinked = 4;
constexpr std::uint32_t kNoPackets = 0xFFFFFFFF;

// Offsets within the header.
constexpr std::size_t kSequence = 4;
constexpr std::size_t kDevice = 8;
constexpr std::size_t kDirection = 12;
constexpr std::size_t kEndpoint = 16;
constexpr std::size_t kTarget = 20;
constexpr std::size_t kStatus = 20;
constexpr std::size_t kLength = 24;
constexpr std::size_t kActual = 24;
constexpr std::size_t kPackets = 32;
constexpr std::size_t kSetup = 40;

std::uint32_t Word(std::span<const std::uint8_t> header, std::size_t offset) {
  return LoadBig<std::uint32_t>(header, offset);
}

void Require(bool kept, const std::string& what, std::uint32_t value) {
  if (!kept) {
    throw ProtocolError("The USB/IP host sent " + what + " " + std::to_string(value) + "; it was disconnected.");
  }
}

Submit SubmitOf(std::span<const std::uint8_t> header) {
  const std::uint32_t direction = Word(header, kDirection);
  const std::uint32_t endpoint = Word(header, kEndpoint);
  const std::uint32_t length = Word(header, kLength);
  const std::uint32_t packets = Word(header, kPackets);
  Require(direction <= 1, "the unknown direction", direction);
  Require(endpoint <= 15, "the impossible endpoint", endpoint);
  Require(length <= kMaxUrbLength, "a transfer of too many bytes:", length);
  Require(packets == 0 || packets == kNoPackets, "isochronous packets, which the camera does not have:", packets);
  Submit submit;
  submit.sequence = Word(header, kSequence);
  submit.endpoint = static_cast<std::uint8_t>(endpoint);
  submit.in = direction == 1;
  submit.length = length;
  std::copy_n(header.begin() + kSetup, submit.setup.size(), submit.setup.begin());
  return submit;
}

Header AnswerHeader(std::uint32_t command, std::uint32_t sequence, std::int32_t status) {
  Header header{};
  StoreBig(std::span<std::uint8_t>(header), 0, command);
  StoreBig(std::span<std::uint8_t>(header), kSequence, sequence);
  StoreBig(std::span<std::uint8_t>(header), kStatus, static_cast<std::uint32_t>(status));
  return header;
}

}  // namespace

void MessageReader::Feed(std::span<const std::uint8_t> bytes) {
  pending_.erase(pending_.begin(), pending_.begin() + static_cast<std::ptrdiff_t>(taken_));
  taken_ = 0;
  pending_.insert(pending_.end(), bytes.begin(), bytes.end());
}

std::optional<Message> MessageReader::Next() {
  const auto rest = std::span<const std::uint8_t>(pending_).subspan(taken_);
  if (rest.size() < kHeaderSize) return std::nullopt;
  const auto header = rest.first(kHeaderSize);
  const std::uint32_t command = Word(header, 0);
  Require(command == kSubmit || command == kUnlink, "the unknown command", command);
  Require(Word(header, kDevice) == device_, "a message for the unknown device", Word(header, kDevice));
  if (command == kUnlink) {
    taken_ += kHeaderSize;
    return Unlink{Word(header, kSequence), Word(header, kTarget)};
  }
  Submit submit = SubmitOf(header);
  const std::size_t body = submit.in ? 0 : submit.length;
  if (rest.size() - kHeaderSize < body) return std::nullopt;
  const auto data = rest.subspan(kHeaderSize, body);
  submit.data.assign(data.begin(), data.end());
  taken_ += kHeaderSize + body;
  return submit;
}

Header EncodeSubmitted(std::uint32_t sequence, std::int32_t status, std::uint32_t actual) {
  Header header = AnswerHeader(kSubmitted, sequence, status);
  StoreBig(std::span<std::uint8_t>(header), kActual, actual);
  return header;
}

Header EncodeUnlinked(std::uint32_t sequence, std::int32_t status) {
  return AnswerHeader(kUnlinked, sequence, status);
}

}  // namespace vcam::usbip

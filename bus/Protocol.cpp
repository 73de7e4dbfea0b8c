// Turns the payloads of the bus's frames into bytes and back.
#include "bus/Protocol.h"

#include "bus/PayloadReader.h"

namespace bus {
namespace {

void AppendStatus(base::Bytes& bytes, const CameraStatus& status) {
  base::Append(bytes, status.id);
  for (const std::string& text : {status.serial, status.vendor, status.product, status.revision, status.storage}) {
    AppendBusText(bytes, text);
  }
  base::Append(bytes, status.peripheralType);
  base::Append(bytes, status.holder);
  base::Append(bytes, status.commands);
}

CameraStatus TakeStatus(PayloadReader& reader) {
  CameraStatus status;
  status.id = reader.Take<std::uint32_t>();
  for (std::string* text : {&status.serial, &status.vendor, &status.product, &status.revision, &status.storage}) {
    *text = reader.TakeText();
  }
  status.peripheralType = reader.Take<std::uint8_t>();
  status.holder = reader.Take<std::uint32_t>();
  status.commands = reader.Take<std::uint64_t>();
  return status;
}

template <typename Value>
std::optional<Value> Whole(const PayloadReader& reader, Value value) {
  if (!reader.Complete()) return std::nullopt;
  return value;
}

bool IsErrorCode(ErrorCode code) {
  return code == ErrorCode::kRefused || code == ErrorCode::kNoSuchCamera || code == ErrorCode::kBusy;
}

}  // namespace

base::Bytes Encode(const PlugRequest& request) {
  base::Bytes bytes;
  for (const std::string& text : {request.serial, request.storage, request.revision, request.catalogue}) {
    AppendBusText(bytes, text);
  }
  base::Append(bytes, request.peripheralType);
  return bytes;
}

std::optional<PlugRequest> DecodePlug(std::span<const std::uint8_t> payload) {
  PayloadReader reader(payload);
  PlugRequest request;
  for (std::string* text : {&request.serial, &request.storage, &request.revision, &request.catalogue}) {
    *text = reader.TakeText();
  }
  request.peripheralType = reader.Take<std::uint8_t>();
  return Whole(reader, request);
}

base::Bytes Encode(const FaultRequest& request) {
  base::Bytes bytes;
  AppendBusText(bytes, request.serial);
  AppendBusText(bytes, request.name);
  base::Append(bytes, request.at);
  return bytes;
}

std::optional<FaultRequest> DecodeFault(std::span<const std::uint8_t> payload) {
  PayloadReader reader(payload);
  FaultRequest request;
  request.serial = reader.TakeText();
  request.name = reader.TakeText();
  request.at = reader.Take<std::uint64_t>();
  return Whole(reader, request);
}

base::Bytes Encode(const CameraStatus& status) {
  base::Bytes bytes;
  AppendStatus(bytes, status);
  return bytes;
}

std::optional<CameraStatus> DecodeStatus(std::span<const std::uint8_t> payload) {
  PayloadReader reader(payload);
  return Whole(reader, TakeStatus(reader));
}

base::Bytes Encode(const std::vector<CameraStatus>& list) {
  base::Bytes bytes;
  base::Append(bytes, static_cast<std::uint32_t>(list.size()));
  for (const CameraStatus& status : list) AppendStatus(bytes, status);
  return bytes;
}

std::optional<std::vector<CameraStatus>> DecodeStatusList(std::span<const std::uint8_t> payload) {
  PayloadReader reader(payload);
  std::vector<CameraStatus> list;
  // The loop ends with the bytes, whatever the count says.
  for (auto count = reader.Take<std::uint32_t>(); count > 0 && reader.Good(); --count) {
    list.push_back(TakeStatus(reader));
  }
  return Whole(reader, list);
}

base::Bytes Encode(const ErrorAnswer& error) {
  base::Bytes bytes;
  base::Append(bytes, error.code);
  AppendBusText(bytes, error.sentence);
  return bytes;
}

std::optional<ErrorAnswer> DecodeError(std::span<const std::uint8_t> payload) {
  PayloadReader reader(payload);
  ErrorAnswer error;
  error.code = static_cast<ErrorCode>(reader.Take<std::uint8_t>());
  error.sentence = reader.TakeText();
  if (!IsErrorCode(error.code)) return std::nullopt;
  return Whole(reader, error);
}

base::Bytes Encode(const wire::Command& command) {
  base::Bytes bytes;
  base::Append(bytes, command.direction);
  bytes.insert(bytes.end(), command.cdb.begin(), command.cdb.end());
  base::Append(bytes, command.length);
  bytes.insert(bytes.end(), command.data.begin(), command.data.end());
  return bytes;
}

std::optional<wire::Command> DecodeCommand(std::span<const std::uint8_t> payload) {
  PayloadReader reader(payload);
  wire::Command command;
  const auto direction = reader.Take<std::uint8_t>();
  for (std::uint8_t& byte : command.cdb) byte = reader.Take<std::uint8_t>();
  command.length = reader.Take<std::uint32_t>();
  command.data = reader.TakeRest();
  command.direction = static_cast<wire::Direction>(direction);
  if (direction > static_cast<std::uint8_t>(wire::Direction::kFromCamera)) return std::nullopt;
  if (!command.data.empty() && command.direction != wire::Direction::kToCamera) return std::nullopt;
  if (command.data.size() > command.length) return std::nullopt;
  return Whole(reader, command);
}

base::Bytes Encode(const wire::Reply& reply) {
  base::Bytes bytes;
  base::Append(bytes, reply.transport);
  base::Append(bytes, reply.status);
  base::Append(bytes, reply.sense.key);
  base::Append(bytes, reply.sense.asc);
  base::Append(bytes, reply.sense.ascq);
  base::Append(bytes, reply.moved);
  bytes.insert(bytes.end(), reply.data.begin(), reply.data.end());
  return bytes;
}

std::optional<wire::Reply> DecodeReply(std::span<const std::uint8_t> payload) {
  PayloadReader reader(payload);
  wire::Reply reply;
  const auto transport = reader.Take<std::uint8_t>();
  reply.transport = static_cast<wire::Transport>(transport);
  reply.status = reader.Take<std::uint8_t>();
  reply.sense.key = reader.Take<std::uint8_t>();
  reply.sense.asc = reader.Take<std::uint8_t>();
  reply.sense.ascq = reader.Take<std::uint8_t>();
  reply.moved = reader.Take<std::uint32_t>();
  const auto data = reader.TakeRest();
  reply.data.assign(data.begin(), data.end());
  if (transport > static_cast<std::uint8_t>(wire::Transport::kGone)) return std::nullopt;
  return Whole(reader, std::move(reply));
}

base::Bytes EncodeNumber(std::uint32_t number) {
  base::Bytes bytes;
  base::Append(bytes, number);
  return bytes;
}

std::optional<std::uint32_t> DecodeNumber(std::span<const std::uint8_t> payload) {
  PayloadReader reader(payload);
  const auto number = reader.Take<std::uint32_t>();
  return Whole(reader, number);
}

base::Bytes EncodeText(std::string_view text) {
  base::Bytes bytes;
  AppendBusText(bytes, text);
  return bytes;
}

std::optional<std::string> DecodeText(std::span<const std::uint8_t> payload) {
  PayloadReader reader(payload);
  std::string text = reader.TakeText();
  return Whole(reader, std::move(text));
}

base::Bytes EncodeFrame(Kind kind, std::uint32_t tag, std::span<const std::uint8_t> payload) {
  base::Bytes bytes;
  bytes.reserve(sizeof(std::uint32_t) + kFrameHeader + payload.size());
  base::Append(bytes, static_cast<std::uint32_t>(kFrameHeader + payload.size()));
  base::Append(bytes, kind);
  base::Append(bytes, tag);
  bytes.insert(bytes.end(), payload.begin(), payload.end());
  return bytes;
}

}  // namespace bus

// Turns the payloads of the bus's frames into bytes and back.
#include "bus/Protocol.h"

#include <concepts>
#include <ranges>
#include <tuple>

#include "bus/PayloadReader.h"

namespace bus {
namespace {

template <typename Value, typename Record>
concept Is = std::same_as<std::remove_const_t<Value>, Record>;

// The fields of each record in the order of its bytes, to read and to write.
auto Fields(Is<PlugRequest> auto& plug) {
  return std::tie(plug.serial, plug.storage, plug.revision, plug.catalogue, plug.peripheralType, plug.traits,
                  plug.seed);
}
auto Fields(Is<FaultRequest> auto& fault) {
  return std::tie(fault.serial, fault.name, fault.at);
}
auto Fields(Is<CameraStatus> auto& status) {
  return std::tie(status.id, status.serial, status.vendor, status.product, status.revision, status.storage,
                  status.peripheralType, status.holder, status.commands);
}
auto Fields(Is<ErrorAnswer> auto& error) {
  return std::tie(error.code, error.sentence);
}
auto Fields(Is<wire::Command> auto& command) {
  return std::tie(command.direction, command.cdb, command.length, command.data);
}
auto Fields(Is<wire::Reply> auto& reply) {
  return std::tie(reply.transport, reply.status, reply.sense.key, reply.sense.asc, reply.sense.ascq, reply.moved,
                  reply.data);
}

template <typename Record>
concept HasFields = requires(Record& record) {
  Fields(record);
};

template <typename Value>
void Put(base::Bytes& bytes, const Value& value) {
  if constexpr (HasFields<const Value>) {
    std::apply([&](const auto&... fields) { (Put(bytes, fields), ...); }, Fields(value));
  } else if constexpr (std::is_same_v<Value, std::string>) {
    AppendBusText(bytes, value);
  } else if constexpr (std::ranges::range<Value>) {
    bytes.insert(bytes.end(), value.begin(), value.end());
  } else {
    base::Append(bytes, value);
  }
}

void Put(base::Bytes& bytes, const std::vector<CameraStatus>& list) {
  base::Append(bytes, static_cast<std::uint32_t>(list.size()));
  for (const CameraStatus& status : list) Put(bytes, status);
}

template <typename Value>
void Take(PayloadReader& reader, Value& value) {
  if constexpr (HasFields<Value>) {
    std::apply([&](auto&... fields) { (Take(reader, fields), ...); }, Fields(value));
  } else if constexpr (std::is_same_v<Value, std::string>) {
    value = reader.TakeText();
  } else if constexpr (std::is_same_v<Value, base::Bytes>) {
    const auto rest = reader.TakeRest();
    value.assign(rest.begin(), rest.end());
  } else if constexpr (std::is_same_v<Value, std::span<const std::uint8_t>>) {
    value = reader.TakeRest();
  } else {
    value = reader.Take<Value>();
  }
}

void Take(PayloadReader& reader, std::vector<CameraStatus>& list) {
  // The loop ends where the bytes end, whatever the count says.
  for (auto count = reader.Take<std::uint32_t>(); count > 0 && reader.Good(); --count) {
    Take(reader, list.emplace_back());
  }
}

template <typename Record>
bool IsSound(const Record&) {
  return true;
}

bool IsSound(const PlugRequest& plug) {
  return plug.traits <= (kForwardOnly | kWithoutKeys | kOpaque);
}

bool IsSound(const ErrorAnswer& error) {
  return error.code == ErrorCode::kRefused || error.code == ErrorCode::kNoSuchCamera || error.code == ErrorCode::kBusy;
}

bool IsSound(const wire::Command& command) {
  if (command.direction > wire::Direction::kFromCamera || command.data.size() > command.length) return false;
  return command.data.empty() || command.direction == wire::Direction::kToCamera;
}

bool IsSound(const wire::Reply& reply) {
  return reply.transport <= wire::Transport::kGone;
}

}  // namespace

template <typename Record>
base::Bytes Encode(const Record& record) {
  base::Bytes bytes;
  Put(bytes, record);
  return bytes;
}

template base::Bytes Encode(const PlugRequest&);
template base::Bytes Encode(const FaultRequest&);
template base::Bytes Encode(const CameraStatus&);
template base::Bytes Encode(const std::vector<CameraStatus>&);
template base::Bytes Encode(const ErrorAnswer&);
template base::Bytes Encode(const wire::Command&);
template base::Bytes Encode(const wire::Reply&);

base::Bytes EncodeNumber(std::uint32_t number) {
  return Encode(number);
}

base::Bytes EncodeText(std::string_view text) {
  return Encode(std::string(text));
}

template <typename Record>
std::optional<Record> Decode(std::span<const std::uint8_t> payload) {
  PayloadReader reader(payload);
  Record record{};
  Take(reader, record);
  if (!reader.Complete() || !IsSound(record)) return std::nullopt;
  return record;
}

template std::optional<PlugRequest> Decode(std::span<const std::uint8_t>);
template std::optional<FaultRequest> Decode(std::span<const std::uint8_t>);
template std::optional<CameraStatus> Decode(std::span<const std::uint8_t>);
template std::optional<std::vector<CameraStatus>> Decode(std::span<const std::uint8_t>);
template std::optional<ErrorAnswer> Decode(std::span<const std::uint8_t>);
template std::optional<wire::Command> Decode(std::span<const std::uint8_t>);
template std::optional<wire::Reply> Decode(std::span<const std::uint8_t>);
template std::optional<std::uint32_t> Decode(std::span<const std::uint8_t>);
template std::optional<std::string> Decode(std::span<const std::uint8_t>);

base::Bytes EncodeFrame(Kind kind, std::uint32_t tag, std::span<const std::uint8_t> payload) {
  base::Bytes bytes;
  bytes.reserve(sizeof(std::uint32_t) + kFrameHeader + payload.size());
  base::Append(bytes, static_cast<std::uint32_t>(kFrameHeader + payload.size()), kind, tag);
  bytes.insert(bytes.end(), payload.begin(), payload.end());
  return bytes;
}

}  // namespace bus

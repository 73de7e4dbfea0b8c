#ifndef KELVA_BUS_PROTOCOL_H_
#define KELVA_BUS_PROTOCOL_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Bytes.h"
#include "wire/Command.h"

// The bus's protocol over a local stream socket; vcam/README.md has it byte by byte. A frame is a 32-bit length, then
// that many bytes: the kind, a 32-bit tag and the payload. A request's tag comes back in its answer.

namespace bus {

inline constexpr std::uint32_t kProtocolVersion = 2;
inline constexpr std::size_t kFrameHeader = 5;
inline constexpr std::size_t kMaxText = 4096;
/// The largest frame: a header, a whole data phase and surplus bytes.
inline constexpr std::size_t kMaxFrame = wire::kMaxTransferLength + 1024;

enum class Kind : std::uint8_t {
  // Requests.
  kHello = 1,         ///< version
  kSubscribe = 2,     ///< no payload; kPlugged for every camera present, then kOk, then every change
  kPlug = 3,          ///< PlugRequest
  kUnplug = 4,        ///< serial
  kStatus = 5,        ///< no payload; kOk with a list of CameraStatus
  kFault = 6,         ///< FaultRequest
  kStartSession = 7,  ///< id of the camera; one session per connection
  kEndSession = 8,    ///< no payload
  kCommand = 9,       ///< one command; kReply, or no answer at all while the camera hangs
  // Answers.
  kOk = 0x40,
  kError = 0x41,  ///< ErrorCode, sentence
  kReply = 0x42,  ///< how the command ended
  // Events, tag 0.
  kPlugged = 0x80,    ///< CameraStatus
  kUnplugged = 0x81,  ///< id
};

enum class ErrorCode : std::uint8_t { kRefused = 1, kNoSuchCamera = 3, kBusy = 4 };

struct Frame {
  Kind kind{};
  std::uint32_t tag = 0;
  base::Bytes payload;
};

/// What is peculiar about a camera: bits of PlugRequest::traits.
inline constexpr std::uint8_t kForwardOnly = 1;
inline constexpr std::uint8_t kWithoutKeys = 2;
inline constexpr std::uint8_t kOpaque = 4;

struct PlugRequest {
  std::string serial;
  std::string storage;
  std::string revision;
  std::string catalogue;
  std::uint8_t peripheralType = 0;
  std::uint8_t traits = 0;
  std::uint32_t seed = 0;  ///< of a camera that is opaque
};

struct FaultRequest {
  std::string serial;
  std::string name;
  std::uint64_t at = 1;
};

struct CameraStatus {
  std::uint32_t id = 0;
  std::string serial;
  std::string vendor;
  std::string product;
  std::string revision;
  std::string storage;
  std::uint8_t peripheralType = 0;
  std::uint32_t holder = 0;  ///< process that has the session, 0 for none
  std::uint64_t commands = 0;
};

struct ErrorAnswer {
  ErrorCode code = ErrorCode::kRefused;
  std::string sentence;
};

/// The payload of a record: PlugRequest, FaultRequest, CameraStatus, a vector of CameraStatus, ErrorAnswer, wire::Command,
/// wire::Reply.
template <typename Record>
base::Bytes Encode(const Record& record);
base::Bytes EncodeNumber(std::uint32_t number);
base::Bytes EncodeText(std::string_view text);

/// The record of a payload, also a std::uint32_t or a std::string. Nothing when the payload is too short, too long, or has
/// a text over kMaxText or an unknown trait, error code or transport. A command's data points into `payload`; a direction above
/// 2, data without direction 1 or more data than announced is not a command.
template <typename Record>
std::optional<Record> Decode(std::span<const std::uint8_t> payload);

/// The frame as it travels.
base::Bytes EncodeFrame(Kind kind, std::uint32_t tag, std::span<const std::uint8_t> payload);

}  // namespace bus

#endif  // KELVA_BUS_PROTOCOL_H_

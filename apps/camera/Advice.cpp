#include "apps/camera/Advice.h"

#include <array>
#include <charconv>
#include <cstdio>

#include "apps/commandline/Printable.h"

namespace apps {
namespace {

constexpr std::string_view kGone =
    "the camera is no longer there; plug it in again, switch it on and repeat the command.";

struct ReturnRow {
  std::uint32_t code;
  ExitCode exit;
  std::string_view clause;
};

// Return codes of the call, named as in <IOKit/IOReturn.h>.
constexpr ReturnRow kReturns[] = {
    {0xE00002C0, ExitCode::kGone, kGone},  // kIOReturnNoDevice
    {0xE00002D9, ExitCode::kGone, kGone},  // kIOReturnNotAttached
    {0x10000003, ExitCode::kGone, kGone},  // MACH_SEND_INVALID_DEST: the connection has died with its service
    {0xE00002C5, ExitCode::kBusy,          // kIOReturnExclusiveAccess
     "another program holds the camera; close it, or see which one it is with `kelva doctor`."},
    {0xE00002D5, ExitCode::kBusy,  // kIOReturnBusy
     "the camera is busy with something else; wait until it has finished and repeat the command."},
    {0xE00002D6, ExitCode::kTimedOut,  // kIOReturnTimeout
     "the camera did not answer in time; switch it off and on if it stays silent."},
    {0xE00002C1, ExitCode::kFailed,  // kIOReturnNotPrivileged
     "this user may not send commands to the camera; `kelva doctor` shows how to allow it."},
    {0xE00002E2, ExitCode::kFailed,  // kIOReturnNotPermitted
     "this user may not send commands to the camera; `kelva doctor` shows how to allow it."},
    {0xE00002BD, ExitCode::kFailed,  // kIOReturnNoMemory
     "the system had no memory for the transfer; close other programs and repeat the command."},
    {0xE00002E1, ExitCode::kFailed,  // kIOReturnMessageTooLarge
     "the system's driver does not take a transfer of this size; `kelva doctor` shows the limit."},
    {0xE00002C2, ExitCode::kFailed,  // kIOReturnBadArgument
     "the system's driver does not take a transfer of this kind; `kelva doctor` looks for the cause."},
    {0xE00002CD, ExitCode::kFailed,  // kIOReturnNotOpen
     "its session has ended; repeat the command."},
    {0xE00002CA, ExitCode::kFailed,  // kIOReturnIOError
     "the system could not carry it out; `kelva doctor` looks for the cause."},
};

struct SenseRow {
  std::uint32_t key;
  std::string_view name;
  std::string_view advice;
};

constexpr SenseRow kSenses[] = {
    {0x2, "not ready", "wait until the camera is ready (`kelva ready --wait`) and repeat the command"},
    {0x3, "medium error", "its storage may be damaged; copy what is left and replace the card"},
    {0x4, "hardware error", "switch the camera off and on; if it stays, the camera needs repair"},
    {0x5, "illegal request", "it does not know the command, or not with these values"},
    {0x6, "unit attention", "it was restarted or its storage changed; repeat the command"},
    {0x7, "data protect", "its storage is write-protected or full of protected pictures"},
    {0xB, "aborted command", "repeat the command; a bad cable is a common cause"},
};

constexpr std::uint32_t kSenseBusy = 0x08;
constexpr std::uint32_t kTransportFailed = 0xFF;
constexpr std::uint32_t kIllegalRequest = 0x5;
constexpr std::uint32_t kNoSuchOperation = 0x20;

template <typename... Values>
std::string Format(const char* format, Values... values) {
  std::array<char, 160> text{};
  std::snprintf(text.data(), text.size(), format, values...);
  return text.data();
}

std::optional<std::uint32_t> HexAfter(std::string_view text, std::string_view label) {
  const std::size_t at = text.find(label);
  if (at == std::string_view::npos) return std::nullopt;
  const char* begin = text.data() + at + label.size();
  std::uint32_t value = 0;
  const auto [end, error] = std::from_chars(begin, text.data() + text.size(), value, 16);
  if (error != std::errc()) return std::nullopt;
  return value;
}

Verdict Transport(std::uint32_t status) {
  return {ExitCode::kFailed,
          Format("the transfer broke off (host status 0x%02x, driver status 0x%02x); check cable and port, then repeat "
                 "the command.",
                 (status >> 8) & 0xFFU, (status >> 16) & 0xFFU)};
}

std::string_view SenseAdvice(std::uint32_t key, std::uint32_t code) {
  if (key == kIllegalRequest && code == kNoSuchOperation) return "this camera does not have this function";
  for (const SenseRow& row : kSenses) {
    if (row.key == key) return row.advice;
  }
  return "its manual may know the code";
}

std::string SenseName(std::uint32_t key) {
  for (const SenseRow& row : kSenses) {
    if (row.key == key) return " (" + std::string(row.name) + ")";
  }
  return "";
}

Verdict Refused(const TransferReport& report) {
  const std::uint32_t key = (report.status >> 8) & 0xFFU;
  const std::uint32_t code = (report.status >> 16) & 0xFFU;
  const std::uint32_t qualifier = (report.status >> 24) & 0xFFU;
  std::string clause = "the camera refused the command [" + report.block + "]";
  if ((report.status >> 8) == 0) {
    clause +=
        Format(" with status 0x%02x and gave no reason; `kelva ready` shows whether it takes commands.", report.status);
    return {ExitCode::kRefused, clause};
  }
  clause += Format(" with sense key %x", key) + SenseName(key) + Format(", code %02x/%02x; ", code, qualifier);
  return {ExitCode::kRefused, clause + std::string(SenseAdvice(key, code)) + "."};
}

Verdict UnknownReturn(const TransferReport& report) {
  return {ExitCode::kFailed, "the system's driver failed on the command [" + report.block +
                                 Format("] with code 0x%08x; `kelva doctor` looks for the cause.", report.returned)};
}

// The library's own words about a wrong answer: "Camera error: ReadFile() truncated." without prefix and call stack.
Verdict WrongAnswer(std::string_view message) {
  std::string_view said = message.substr(0, message.find('\n'));
  for (const std::string_view prefix : {"Camera error: ", "OsxCameraError: "}) {
    if (said.starts_with(prefix)) said.remove_prefix(prefix.size());
  }
  while (said.ends_with('.')) said.remove_suffix(1);
  const std::string shown = Printable(said);
  return {ExitCode::kFailed, "the camera's answer was not what it had announced or must be (" + shown +
                                 "); repeat the command, and restart the camera if it stays."};
}

}  // namespace

std::optional<TransferReport> ReadTransferReport(std::string_view message) {
  const auto returned = HexAfter(message, "\nret=0x");
  const auto status = HexAfter(message, " result.status=0x");
  if (!returned || !status) return std::nullopt;
  const std::size_t open = message.find("CDB=[");
  const std::size_t close = message.find("]\n");
  std::string block;
  if (open != std::string_view::npos && close != std::string_view::npos && open + 5 <= close) {
    block = message.substr(open + 5, close - open - 5);
  }
  return TransferReport{Printable(block), *returned, *status};
}

Verdict AdviceFor(const TransferReport& report) {
  for (const ReturnRow& row : kReturns) {
    if (row.code == report.returned) return {row.exit, std::string(row.clause)};
  }
  if (report.returned != 0) return UnknownReturn(report);
  if ((report.status & 0xFFU) == kTransportFailed) return Transport(report.status);
  if ((report.status & 0xFFU) == kSenseBusy) {
    return {ExitCode::kBusy, "the camera is busy; wait until it has finished and repeat the command."};
  }
  return Refused(report);
}

Verdict AdviceFor(std::string_view message) {
  const auto report = ReadTransferReport(message);
  return report ? AdviceFor(*report) : WrongAnswer(message);
}

}  // namespace apps

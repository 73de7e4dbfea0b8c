// Turns the codes of a failed transfer, and the library's words about a wrong answer, into advice.

#include "apps/camera/Advice.h"

#include <IOKit/IOKitLib.h>

#include <array>
#include <cstdio>

#include "apps/commandline/Printable.h"
#include "wire/TransferStatus.h"

namespace apps {
namespace {

struct ReturnRow {
  kern_return_t code;
  ExitCode exit;
  std::string_view clause;
};

constexpr ReturnRow kReturns[] = {
    {kIOReturnNoDevice, ExitCode::kGone, kGoneAdvice},
    {kIOReturnNotAttached, ExitCode::kGone, kGoneAdvice},
    {MACH_SEND_INVALID_DEST, ExitCode::kGone, kGoneAdvice},  // the connection has died with its service
    {kIOReturnExclusiveAccess, ExitCode::kBusy,
     "another program holds the camera; close it, or see which one it is with `kelva doctor`."},
    {kIOReturnBusy, ExitCode::kBusy,
     "the camera is busy with something else; wait until it has finished and try again."},
    {kIOReturnTimeout, ExitCode::kTimedOut,
     "the camera did not answer in time; switch it off and on if it stays silent."},
    {kIOReturnNotPrivileged, ExitCode::kFailed,
     "this user may not send commands to the camera; `kelva doctor` shows how to allow it."},
    {kIOReturnNotPermitted, ExitCode::kFailed,
     "this user may not send commands to the camera; `kelva doctor` shows how to allow it."},
    {kIOReturnNoMemory, ExitCode::kFailed,
     "the system had no memory for the transfer; close other programs and try again."},
    {kIOReturnMessageTooLarge, ExitCode::kFailed,
     "the system's driver does not take a transfer of this size; `kelva doctor` shows the limit."},
    {kIOReturnBadArgument, ExitCode::kFailed,
     "the system's driver does not take a transfer of this kind; `kelva doctor` looks for the cause."},
    {kIOReturnNotOpen, ExitCode::kFailed, "its session has ended; try again."},
    {kIOReturnIOError, ExitCode::kFailed, "the system could not carry it out; `kelva doctor` looks for the cause."},
};

struct SenseRow {
  std::uint8_t key;
  std::string_view name;
  std::string_view advice;
};

constexpr SenseRow kSenses[] = {
    {0x2, "not ready", "wait until the camera is ready (`kelva ready --wait`) and try again"},
    {0x3, "medium error", "its storage may be damaged; copy what is left and replace the card"},
    {0x4, "hardware error", "switch the camera off and on; if the error comes back, the camera needs repair"},
    {0x5, "illegal request", "it does not know the command, or not with these values"},
    {0x6, "unit attention", "it was restarted or its storage changed; try again"},
    {0x7, "data protect", "its storage is write-protected or full of protected pictures"},
    {0xB, "aborted command", "try again; a bad cable is a common cause"},
};

constexpr std::uint8_t kIllegalRequest = 0x5;
constexpr std::uint8_t kNoSuchOperation = 0x20;  // the additional sense code

template <typename... Values>
std::string Format(const char* format, Values... values) {
  std::array<char, 160> text{};
  std::snprintf(text.data(), text.size(), format, values...);
  return text.data();
}

Verdict Transport(std::uint32_t status) {
  return {ExitCode::kFailed, "the transfer broke off; check cable and port, then try again.",
          Format("host status 0x%02x, driver status 0x%02x", wire::HostStatusOf(status), wire::DriverStatusOf(status))};
}

std::string_view SenseAdvice(wire::Sense sense) {
  if (sense.key == kIllegalRequest && sense.asc == kNoSuchOperation) return "this camera does not have this function";
  for (const SenseRow& row : kSenses) {
    if (row.key == sense.key) return row.advice;
  }
  return "its manual may know the code";
}

std::string SenseName(std::uint8_t key) {
  for (const SenseRow& row : kSenses) {
    if (row.key == key) return " (" + std::string(row.name) + ")";
  }
  return "";
}

Verdict Refused(const kelva::TransferReport& report) {
  const wire::Sense sense = wire::SenseOf(report.status);
  const std::string command = "command " + kelva::BlockText(report.cdb);
  if (sense == wire::Sense{}) {
    return {ExitCode::kRefused, "the camera refused and gave no reason; `kelva ready` shows whether it takes commands.",
            command + Format(", status 0x%02x", report.status)};
  }
  return {ExitCode::kRefused,
          "the camera refused" + SenseName(sense.key) + "; " + std::string(SenseAdvice(sense)) + ".",
          command + Format(", sense key %x, code %02x/%02x", sense.key, sense.asc, sense.ascq)};
}

Verdict UnknownReturn(const kelva::TransferReport& report) {
  return {ExitCode::kFailed, "the system's driver failed; `kelva doctor` looks for the cause.",
          "command " + kelva::BlockText(report.cdb) +
              Format(", code 0x%08x", static_cast<std::uint32_t>(report.returnCode))};
}

// Quotes the library's message about a wrong answer without its prefix and call stack.
Verdict WrongAnswer(std::string_view message) {
  std::string_view said = message.substr(0, message.find('\n'));
  for (const std::string_view prefix : {"Camera error: ", "OsxCameraError: ", "FileReader: "}) {
    if (said.starts_with(prefix)) said.remove_prefix(prefix.size());
  }
  // The quotation stands inside a sentence.
  while (said.ends_with('.')) said.remove_suffix(1);
  const std::string shown = Printable(said);
  return {ExitCode::kFailed,
          "the camera sent a wrong answer (" + shown + "); try again, and restart the camera if that does not help."};
}

}  // namespace

Verdict AdviceFor(const kelva::TransferReport& report) {
  // The return code first: unless it is 0, the status is meaningless.
  for (const ReturnRow& row : kReturns) {
    if (row.code == report.returnCode) return {row.exit, std::string(row.clause)};
  }
  if (report.returnCode != kIOReturnSuccess) return UnknownReturn(report);
  if (wire::StatusByte(report.status) == wire::kTransportFailed) return Transport(report.status);
  if (wire::StatusByte(report.status) == wire::kScsiBusy) {
    return {ExitCode::kBusy, "the camera is busy; wait until it has finished and try again."};
  }
  return Refused(report);
}

Verdict AdviceFor(std::string_view message) {
  const auto report = kelva::ReadTransferReport(message);
  return report ? AdviceFor(*report) : WrongAnswer(message);
}

bool RefusesWhatWasAsked(std::string_view message) {
  const auto report = kelva::ReadTransferReport(message);
  if (!report || AdviceFor(*report).code != ExitCode::kRefused) return false;
  const wire::Sense sense = wire::SenseOf(report->status);
  return sense.key == kIllegalRequest && sense.asc != kNoSuchOperation;
}

}  // namespace apps

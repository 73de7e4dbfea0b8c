// Turns a finished SG_IO into return code, status and length.

#include "darwin/sg/SgVerdict.h"

#include <IOKit/IOReturn.h>

#include <algorithm>
#include <cerrno>

namespace darwin::sg {
namespace {

// The kernel's host status values that have a meaning of their own here.
constexpr std::uint16_t kHostNoConnect = 1;
constexpr std::uint16_t kHostBusBusy = 2;
constexpr std::uint16_t kHostTimeOut = 3;
constexpr std::uint16_t kHostError = 7;
constexpr std::uint16_t kHostReset = 8;

std::uint8_t Narrow(std::uint16_t status) {
  return static_cast<std::uint8_t>(std::min<std::uint16_t>(status, 0xFF));
}

Verdict JudgeTransport(const SgOutcome& outcome) {
  switch (outcome.hostStatus) {
    case kHostNoConnect:
      return {kIOReturnNoDevice, 0, 0};
    case kHostBusBusy:
      return {kIOReturnBusy, 0, 0};
    case kHostTimeOut:
      return {kIOReturnTimeout, 0, 0};
    default:
      return {kIOReturnSuccess, wire::TransportResultStatus(Narrow(outcome.hostStatus), Narrow(outcome.driverStatus)),
              0};
  }
}

}  // namespace

int ReturnCodeOf(int error) {
  switch (error) {
    case ENODEV:
    case ENXIO:
    case ENOENT:
      return kIOReturnNoDevice;
    case EACCES:
    case EPERM:
    case EROFS:
      return kIOReturnNotPermitted;
    case EBUSY:
    case EWOULDBLOCK:
      return kIOReturnExclusiveAccess;
    case ENOMEM:
      return kIOReturnNoMemory;
    case EINVAL:
      return kIOReturnBadArgument;
    case ETIMEDOUT:
      return kIOReturnTimeout;
    default:
      return kIOReturnIOError;
  }
}

bool MayBeGone(const SgOutcome& outcome) {
  return outcome.error == 0 && (outcome.hostStatus == kHostError || outcome.hostStatus == kHostReset);
}

Verdict Judge(const SgOutcome& outcome, std::uint32_t length, bool gone) {
  if (outcome.error != 0) return {ReturnCodeOf(outcome.error), 0, 0};
  if (gone) return {kIOReturnNoDevice, 0, 0};
  if (outcome.hostStatus != 0 || outcome.driverStatus != 0) return JudgeTransport(outcome);
  if (outcome.status != wire::kScsiGood) {
    return {kIOReturnSuccess, wire::ScsiResultStatus(outcome.status, outcome.sense), 0};
  }
  if (!outcome.Succeeded(length)) return {kIOReturnSuccess, wire::TransportResultStatus(0, 0), 0};
  return {kIOReturnSuccess, 0, static_cast<std::uint32_t>(outcome.moved)};
}

}  // namespace darwin::sg

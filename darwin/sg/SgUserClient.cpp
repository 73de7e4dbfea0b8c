#include "SgUserClient.h"

#include <IOKit/IOReturn.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace darwin::sg {
namespace {

constexpr std::uint8_t kToCamera = 1;
constexpr std::uint8_t kFromCamera = 2;
constexpr std::uint8_t kShortestCdb = 6;  // the kernel takes none shorter
constexpr std::uint32_t kMsPerSecond = 1000;
// How long an unplugged device may take to be known as such after its command has failed.
constexpr int kHangUpPatienceMs = 300;
// Answers up to this size reach the caller by way of a buffer of this side. A chunk of a file goes straight to the caller:
// one more copy of it is an eighth of all that reading it costs.
constexpr std::uint32_t kLargestDetour = 4096;

std::uint32_t Milliseconds(std::uint32_t seconds) {
  return std::min(seconds, std::numeric_limits<std::uint32_t>::max() / kMsPerSecond - 1) * kMsPerSecond;
}

DataPhase PhaseOf(const UserClientTransferRequest& request) {
  if (request.length == 0) return DataPhase::kNone;
  if (request.direction == kToCamera) return DataPhase::kToDevice;
  if (request.direction == kFromCamera) return DataPhase::kFromDevice;
  return DataPhase::kNone;
}

bool IsSound(const UserClientTransferRequest& request, DataPhase phase) {
  if (request.cdbLength < kShortestCdb || request.cdbLength > sizeof request.cdb) return false;
  return phase == DataPhase::kNone || (request.length > 0 && request.bufferAddress != 0);
}

void* BufferOf(const UserClientTransferRequest& request) {
  return reinterpret_cast<void*>(static_cast<std::uintptr_t>(request.bufferAddress));
}

}  // namespace

int SgUserClient::CallScalar(std::uint32_t selector) {
  switch (selector) {
    case kUserClientStartSession:
      return StartSession();
    case kUserClientEndSession:
      return EndSession();
    default:
      return kIOReturnBadArgument;
  }
}

int SgUserClient::CallStruct(std::uint32_t selector, const void* in, std::size_t inSize, void* out,
                             std::size_t* outSize) {
  UserClientTransferRequest request;
  UserClientTransferResult result;
  if (selector != kUserClientTransfer || inSize != sizeof request || *outSize < sizeof result) {
    return kIOReturnBadArgument;
  }
  std::memcpy(&request, in, sizeof request);
  const Verdict verdict = Transfer(request);
  if (verdict.returnCode != kIOReturnSuccess) return verdict.returnCode;
  result = {verdict.status, static_cast<std::int32_t>(verdict.moved)};
  std::memcpy(out, &result, sizeof result);
  *outSize = sizeof result;
  return kIOReturnSuccess;
}

int SgUserClient::StartSession() {
  if (session_) return kIOReturnExclusiveAccess;
  int error = 0;
  auto session = SgSession::Open(*system_, target_.node, error);
  if (!session) return ReturnCodeOf(error);
  // Asked after the opening: from here on the descriptor cannot become another device's.
  if (!target_.isPresent()) return kIOReturnNoDevice;
  session_ = std::move(session);
  return kIOReturnSuccess;
}

int SgUserClient::EndSession() {
  if (!session_) return kIOReturnNotOpen;
  session_.reset();
  return kIOReturnSuccess;
}

Verdict SgUserClient::Transfer(const UserClientTransferRequest& request) {
  if (!session_) return {kIOReturnNotOpen, 0, 0};
  const DataPhase phase = PhaseOf(request);
  if (!IsSound(request, phase)) return {kIOReturnBadArgument, 0, 0};
  const auto length = phase == DataPhase::kNone ? 0U : static_cast<std::uint32_t>(request.length);
  if (length > session_->LargestTransfer()) return RefuseTooLong(length);
  return Carry(request, phase, length);
}

Verdict SgUserClient::Carry(const UserClientTransferRequest& request, DataPhase phase, std::uint32_t length) {
  const SgOutcome outcome = RunCommand(*system_, session_->Descriptor(), Prepare(request, phase, length));
  const Verdict verdict = Judge(outcome, length, HasGone(outcome));
  if (phase == DataPhase::kFromDevice) Deliver(request, length, verdict.moved);
  return verdict;
}

// The kernel fills the whole buffer, beyond the device's bytes with those of an earlier command, and does so even when the
// transport failed. The caller sees none of that: a short answer leaves its own bytes, a short chunk zeros.
void SgUserClient::Deliver(const UserClientTransferRequest& request, std::uint32_t length, std::uint32_t moved) {
  auto* buffer = static_cast<std::uint8_t*>(BufferOf(request));
  if (length <= kLargestDetour) {
    std::memcpy(buffer, arrival_.data(), moved);
  } else {
    std::memset(buffer + moved, 0, length - moved);
  }
}

SgRequest SgUserClient::Prepare(const UserClientTransferRequest& request, DataPhase phase, std::uint32_t length) {
  SgRequest command;
  command.cdb = std::span(request.cdb).first(request.cdbLength);
  command.phase = phase;
  command.length = length;
  command.timeoutMs = Milliseconds(request.timeout);
  if (phase == DataPhase::kToDevice) command.data = BufferOf(request);
  if (phase == DataPhase::kFromDevice) {
    arrival_.resize(kLargestDetour);
    command.data = length <= kLargestDetour ? arrival_.data() : BufferOf(request);
  }
  return command;
}

Verdict SgUserClient::RefuseTooLong(std::uint32_t length) const {
  target_.report("A command asked for " + std::to_string(length) + " bytes, but " + target_.node + " carries at most " +
                 std::to_string(session_->LargestTransfer()) +
                 " at once; install the udev rule that raises max_sectors (see 'kelva doctor').");
  return {kIOReturnMessageTooLarge, 0, 0};
}

bool SgUserClient::HasGone(const SgOutcome& outcome) const {
  return MayBeGone(outcome) &&
         (system_->WaitForHangUp(session_->Descriptor(), kHangUpPatienceMs) || !target_.isPresent());
}

}  // namespace darwin::sg

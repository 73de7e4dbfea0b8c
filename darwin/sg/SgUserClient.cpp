// What the driver of a camera does on a real machine: selectors 0, 1 and 2 over /dev/sgN.

#include "darwin/sg/SgUserClient.h"

#include <IOKit/IOReturn.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace darwin::sg {
namespace {

constexpr std::uint8_t kToCamera = 1;
constexpr std::uint8_t kFromCamera = 2;
constexpr std::uint8_t kShortestCdb = 6;  // the kernel refuses shorter ones
constexpr std::uint32_t kMsPerSecond = 1000;
// How long the kernel may take to report an unplug after the command has failed.
constexpr int kHangUpPatienceMs = 300;

// The request holds seconds in a full 32-bit field; a product above that would wrap to a short time-out.
std::uint32_t Milliseconds(std::uint32_t seconds) {
  return std::min(seconds, std::numeric_limits<std::uint32_t>::max() / kMsPerSecond - 1) * kMsPerSecond;
}

DataPhase PhaseOf(const wire::UserClientTransferRequest& request) {
  if (request.length == 0) return DataPhase::kNone;
  if (request.direction == kToCamera) return DataPhase::kToDevice;
  if (request.direction == kFromCamera) return DataPhase::kFromDevice;
  return DataPhase::kNone;
}

bool IsSound(const wire::UserClientTransferRequest& request, DataPhase phase) {
  if (request.cdbLength < kShortestCdb || request.cdbLength > sizeof request.cdb) return false;
  return phase == DataPhase::kNone || (request.length > 0 && request.bufferAddress != 0);
}

void* BufferOf(const wire::UserClientTransferRequest& request) {
  return reinterpret_cast<void*>(static_cast<std::uintptr_t>(request.bufferAddress));
}

SgRequest Prepare(SgSession& session, const wire::UserClientTransferRequest& request, DataPhase phase,
                  std::uint32_t length) {
  SgRequest command;
  command.cdb = std::span(request.cdb).first(request.cdbLength);
  command.phase = phase;
  command.length = length;
  command.timeoutMs = Milliseconds(request.timeout);
  if (phase == DataPhase::kToDevice) command.data = BufferOf(request);
  if (phase == DataPhase::kFromDevice) {
    command.intoMapped = session.Landing().IsMapped(length);
    if (!command.intoMapped) command.data = session.Landing().Bytes(length).data();
  }
  return command;
}

}  // namespace

int SgUserClient::CallScalar(std::uint32_t selector) {
  if (selector == wire::kUserClientStartSession) return StartSession();
  return selector == wire::kUserClientEndSession ? EndSession() : kIOReturnBadArgument;
}

int SgUserClient::CallStruct(std::uint32_t selector, const void* in, std::size_t inSize, void* out,
                             std::size_t* outSize) {
  wire::UserClientTransferRequest request;
  wire::UserClientTransferResult result;
  if (selector != wire::kUserClientTransfer || inSize != sizeof request || *outSize < sizeof result) {
    return kIOReturnBadArgument;
  }
  std::memcpy(&request, in, sizeof request);  // the caller's record may lie at any address
  const Verdict verdict = Transfer(request);
  if (verdict.returnCode != kIOReturnSuccess) return verdict.returnCode;
  result = {verdict.status, static_cast<std::int32_t>(verdict.moved)};
  std::memcpy(out, &result, sizeof result);
  *outSize = sizeof result;
  return kIOReturnSuccess;
}

int SgUserClient::StartSession() {
  if (Session()) return kIOReturnExclusiveAccess;
  int error = 0;
  auto session = SgSession::Open(*system_, target_.node, error);
  if (!session) return ReturnCodeOf(error);
  // Checked after opening, because the path may pass to another device, but an open descriptor cannot.
  if (!target_.isPresent()) return kIOReturnNoDevice;
  const std::lock_guard lock(sessionMutex_);
  session_ = std::make_shared<SgSession>(std::move(*session));
  return kIOReturnSuccess;
}

int SgUserClient::EndSession() {
  std::shared_ptr<SgSession> ended;  // let go after the lock, or when the command in progress ends
  const std::lock_guard lock(sessionMutex_);
  ended.swap(session_);
  return ended ? kIOReturnSuccess : kIOReturnNotOpen;
}

std::shared_ptr<SgSession> SgUserClient::Session() const {
  const std::lock_guard lock(sessionMutex_);
  return session_;
}

Verdict SgUserClient::Transfer(const wire::UserClientTransferRequest& request) {
  const std::shared_ptr<SgSession> session = Session();
  if (!session) return {kIOReturnNotOpen, 0, 0};
  const DataPhase phase = PhaseOf(request);
  if (!IsSound(request, phase)) return {kIOReturnBadArgument, 0, 0};
  const auto length = phase == DataPhase::kNone ? 0U : static_cast<std::uint32_t>(request.length);
  if (length > session->LargestTransfer()) return RefuseTooLong(length, session->LargestTransfer());
  return Carry(*session, request, phase, length);
}

Verdict SgUserClient::Carry(SgSession& session, const wire::UserClientTransferRequest& request, DataPhase phase,
                            std::uint32_t length) {
  const std::lock_guard oneAtATime(commandMutex_);  // commands share the landing area
  const SgOutcome outcome = RunCommand(*system_, session.Descriptor(), Prepare(session, request, phase, length));
  const Verdict verdict = Judge(outcome, length, HasGone(session, outcome));
  // Only the bytes that moved: the rest of the landing area may hold another command's.
  if (phase == DataPhase::kFromDevice && verdict.moved > 0) {
    std::memcpy(BufferOf(request), session.Landing().Bytes(length).data(), verdict.moved);
  }
  return verdict;
}

Verdict SgUserClient::RefuseTooLong(std::uint32_t length, std::uint32_t largest) const {
  target_.report("A command asked for " + std::to_string(length) + " bytes, but " + target_.node + " carries at most " +
                 std::to_string(largest) +
                 " at once; install the udev rule that raises max_sectors (see 'kelva doctor').");
  return {kIOReturnMessageTooLarge, 0, 0};
}

// After an unplug the host status alone looks like any failed transport, so the node is asked for a while.
bool SgUserClient::HasGone(const SgSession& session, const SgOutcome& outcome) const {
  return MayBeGone(outcome) &&
         (system_->WaitForHangUp(session.Descriptor(), kHangUpPatienceMs) || !target_.isPresent());
}

}  // namespace darwin::sg

// Decides for each command which armed faults apply.
#include "vcam/faults/FaultPlan.h"

#include <algorithm>

#include "vcam/device/Replies.h"
#include "vcam/device/SenseCodes.h"
#include "vcam/faults/Falsify.h"

namespace vcam {
namespace {

std::optional<wire::Reply> InsteadOf(FaultKind kind) {
  switch (kind) {
    case FaultKind::kFail:
      return Refuse(sense::kInternalFailure);
    case FaultKind::kStall:
      return wire::EndedBy(wire::Transport::kStall);
    case FaultKind::kHang:
      return wire::EndedBy(wire::Transport::kHang);
    default:
      return std::nullopt;
  }
}

bool HappensOnce(FaultKind kind) {
  return kind == FaultKind::kFail || kind == FaultKind::kShort || kind == FaultKind::kSurplusOne ||
         kind == FaultKind::kSurplusTwo || kind == FaultKind::kStall || kind == FaultKind::kHang;
}

}  // namespace

void FaultPlan::Arm(const Fault& fault) {
  Armed armed{fault};
  if (fault.kind != FaultKind::kSlow && fault.kind != FaultKind::kUnplugAtByte) {
    armed.fault.at = std::max<std::uint64_t>(fault.at, 1);
  }
  armed_.push_back(armed);
}

std::optional<wire::Reply> FaultPlan::Next() {
  // A fault that happens once has happened by now.
  std::erase_if(armed_, [](const Armed& armed) { return HappensOnce(armed.fault.kind) && armed.Running(); });
  for (Armed& armed : armed_) {
    if (armed.fault.kind != FaultKind::kUnplugAtByte && armed.fault.kind != FaultKind::kSlow) ++armed.seen;
  }
  for (const Armed& armed : armed_) {
    if (!armed.Due()) continue;
    if (std::optional<wire::Reply> reply = InsteadOf(armed.fault.kind)) return reply;
  }
  return std::nullopt;
}

wire::Command FaultPlan::Limit(const wire::Command& command) const {
  wire::Command limited = command;
  for (const Armed& armed : armed_) {
    if (armed.fault.kind != FaultKind::kUnplugAtByte) continue;
    const std::uint64_t left = armed.fault.at - armed.seen;
    if (limited.data.size() > left) limited.data = limited.data.first(static_cast<std::size_t>(left));
  }
  return limited;
}

void FaultPlan::Apply(const wire::Command& command, const Marks* marks, wire::Reply& reply) {
  for (Armed& armed : armed_) {
    if (armed.fault.kind != FaultKind::kUnplugAtByte) ApplyOne(armed, command, marks, reply);
  }
  // Last, so that bytes that other faults added count too.
  for (Armed& armed : armed_) {
    if (armed.fault.kind == FaultKind::kUnplugAtByte) ApplyUnplug(armed, command, reply);
  }
}

void FaultPlan::ApplyOne(Armed& armed, const wire::Command& command, const Marks* marks, wire::Reply& reply) {
  if (armed.fault.kind == FaultKind::kSlow) {
    reply.delay += std::chrono::milliseconds(std::min<std::uint64_t>(armed.fault.at, 3'600'000));
    return;
  }
  if (!armed.Running()) return;
  Falsify(armed.fault.kind, {command, marks, armed.Due(), armed.seen - armed.fault.at + 1}, reply);
}

void FaultPlan::ApplyUnplug(Armed& armed, const wire::Command& command, wire::Reply& reply) {
  const std::uint64_t moved = command.direction == wire::Direction::kToCamera ? command.data.size() : reply.data.size();
  const std::uint64_t left = armed.fault.at - armed.seen;
  if (moved < left) {
    armed.seen += moved;
    return;
  }
  reply.data.resize(static_cast<std::size_t>(std::min<std::uint64_t>(reply.data.size(), left)));
  reply.transport = wire::Transport::kGone;
  reply.moved = static_cast<std::uint32_t>(left);
}

}  // namespace vcam

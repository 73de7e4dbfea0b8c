#include "vcam/device/Replies.h"

#include <algorithm>
#include <utility>

#include "vcam/device/SenseCodes.h"

namespace vcam {

Reply Done(std::uint32_t moved) {
  Reply reply;
  reply.moved = moved;
  return reply;
}

Reply Refuse(Sense reason) {
  Reply reply;
  reply.status = kStatusCheckCondition;
  reply.sense = reason;
  return reply;
}

Reply Answer(const Command& command, Bytes bytes) {
  if (!MayAnswer(command)) return Refuse(sense::kBadCommandField);
  const std::size_t room = command.direction == Direction::kFromCamera ? command.length : 0;
  bytes.resize(std::min(bytes.size(), room));
  Reply reply;
  reply.moved = static_cast<std::uint32_t>(bytes.size());
  reply.data = std::move(bytes);
  return reply;
}

bool MayAnswer(const Command& command) {
  return command.direction != Direction::kToCamera;
}

bool HasNoData(const Command& command) {
  return command.direction == Direction::kNone || command.length == 0;
}

std::optional<std::string> TextOf(const Command& command) {
  if (command.direction != Direction::kToCamera) return std::nullopt;
  const auto end = std::find(command.data.begin(), command.data.end(), std::uint8_t{0});
  if (end == command.data.end()) return std::nullopt;
  return std::string(command.data.begin(), end);
}

}  // namespace vcam

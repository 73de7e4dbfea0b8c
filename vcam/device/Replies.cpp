// Builds the few kinds of replies that handlers give.
#include "vcam/device/Replies.h"

#include <algorithm>
#include <utility>

#include "vcam/device/SenseCodes.h"

namespace vcam {

wire::Reply Done(std::uint32_t moved) {
  return {.moved = moved};
}

wire::Reply Refuse(wire::Sense reason) {
  return {.status = wire::kScsiCheckCondition, .sense = reason};
}

wire::Reply Answer(const wire::Command& command, base::Bytes bytes) {
  if (!MayAnswer(command)) return Refuse(sense::kBadCommandField);
  const std::size_t room = command.direction == wire::Direction::kFromCamera ? command.length : 0;
  bytes.resize(std::min(bytes.size(), room));
  const auto moved = static_cast<std::uint32_t>(bytes.size());
  return {.data = std::move(bytes), .moved = moved};
}

bool MayAnswer(const wire::Command& command) {
  return command.direction != wire::Direction::kToCamera;
}

bool HasNoData(const wire::Command& command) {
  return command.direction == wire::Direction::kNone || command.length == 0;
}

std::optional<std::string> TextOf(const wire::Command& command) {
  if (command.direction != wire::Direction::kToCamera) return std::nullopt;
  const auto end = std::find(command.data.begin(), command.data.end(), std::uint8_t{0});
  if (end == command.data.end()) return std::nullopt;
  return std::string(command.data.begin(), end);
}

}  // namespace vcam

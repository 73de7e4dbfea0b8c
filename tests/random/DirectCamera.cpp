#include "tests/random/DirectCamera.h"

#include <algorithm>

namespace kelva::random {
namespace {

vcam::Direction DirectionOf(int direction) {
  return direction == 1 || direction == 2 ? static_cast<vcam::Direction>(direction) : vcam::Direction::kNone;
}

}  // namespace

bool DirectCamera::Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool) {
  vcam::Command command;
  std::copy(std::begin(cdb.bytes), std::end(cdb.bytes), command.cdb.begin());
  command.direction = DirectionOf(direction);
  command.length = static_cast<std::uint32_t>(size);
  if (command.direction == vcam::Direction::kToCamera)
    command.data = {reinterpret_cast<const std::uint8_t*>(buffer), command.length};
  const vcam::Reply reply = device_.Execute(command);
  if (!reply.Good()) return false;
  std::copy(reply.data.begin(), reply.data.end(), buffer);
  size = static_cast<int>(reply.moved);
  return true;
}

}  // namespace kelva::random

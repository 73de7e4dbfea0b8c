#include "tests/random/DirectCamera.h"

#include <algorithm>

namespace tests::random {
namespace {

wire::Direction DirectionOf(int direction) {
  return direction == 1 || direction == 2 ? static_cast<wire::Direction>(direction) : wire::Direction::kNone;
}

}  // namespace

bool DirectCamera::Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool) {
  wire::Command command;
  std::copy(std::begin(cdb.bytes), std::end(cdb.bytes), command.cdb.begin());
  command.direction = DirectionOf(direction);
  command.length = static_cast<std::uint32_t>(size);
  if (command.direction == wire::Direction::kToCamera) {
    command.data = {reinterpret_cast<const std::uint8_t*>(buffer), command.length};
  }
  const wire::Reply reply = device_.Execute(command);
  if (!reply.Good()) return false;
  std::copy(reply.data.begin(), reply.data.end(), buffer);
  size = static_cast<int>(reply.moved);
  return true;
}

}  // namespace tests::random

// The request that carries a command to the driver.

#include "UserClientTransfer.h"

#include <cstring>

namespace kelva {
namespace {

constexpr std::uint32_t kTimeout = 100;

std::uint8_t DirectionByte(int direction) {
  return direction == 1 || direction == 2 ? static_cast<std::uint8_t>(direction) : std::uint8_t{0};
}

}  // namespace

wire::UserClientTransferRequest MakeTransferRequest(const _VscCdb& cdb, int direction, int size, const void* buffer) {
  static_assert(sizeof(wire::UserClientTransferRequest::cdb) == sizeof(_VscCdb));
  wire::UserClientTransferRequest request{};
  request.direction = DirectionByte(direction);
  request.cdbLength = sizeof(cdb.bytes);
  std::memcpy(request.cdb, cdb.bytes, sizeof(request.cdb));
  request.length = size;
  request.timeout = kTimeout;
  request.bufferAddress = reinterpret_cast<std::uintptr_t>(buffer);
  return request;
}

}  // namespace kelva

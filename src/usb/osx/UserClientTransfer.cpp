#include "UserClientTransfer.h"

#include <cstring>
#include <iomanip>
#include <locale>
#include <sstream>

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

std::string TransferErrorReport(const _VscCdb& cdb, std::int32_t returnCode, std::uint32_t status) {
  std::ostringstream report;
  report.imbue(std::locale::classic());  // the program's own locale may group digits
  report << "Transfer error\nCDB=[" << std::hex << std::setfill('0');
  const char* separator = "";
  for (const unsigned byte : cdb.bytes) {
    report << separator << std::setw(2) << byte;
    separator = " ";
  }
  report << "]\nret=0x" << std::setw(8) << static_cast<std::uint32_t>(returnCode) << " result.status=0x" << std::setw(8)
         << status;
  return report.str();
}

// Building blocks of every command: the command block, and transfers of the usual shapes.

#include "Command.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "LittleEndian.h"

namespace kelva {

_VscCdb Block(Operation operation) {
  _VscCdb cdb{};
  cdb.bytes[at::kOperation] = static_cast<unsigned char>(operation);
  return cdb;
}

_VscCdb Block(Operation operation, std::uint8_t subCode) {
  _VscCdb cdb = Block(operation);
  cdb.bytes[at::kSubCode] = subCode;
  return cdb;
}

bool SendCommand(Camera& camera, const _VscCdb& cdb, bool flag) {
  int size = 0;
  return camera.Transfer(cdb, kNoData, size, nullptr, flag);
}

bool SendBytes(Camera& camera, const _VscCdb& cdb, const char* bytes, int size, bool flag) {
  // Transfer takes a char* for both directions; here it only reads.
  return camera.Transfer(cdb, kToCamera, size, const_cast<char*>(bytes), flag);
}

bool SendText(Camera& camera, const _VscCdb& cdb, const char* text, std::size_t length, bool flag) {
  if (length >= static_cast<std::size_t>(std::numeric_limits<int>::max())) return false;
  return SendBytes(camera, cdb, text, static_cast<int>(length) + 1, flag);
}

bool SendText(Camera& camera, const _VscCdb& cdb, const char* text, bool flag) {
  return SendText(camera, cdb, text, std::strlen(text), flag);
}

int ReadAnswer(Camera& camera, const _VscCdb& cdb, void* answer, int expected, bool flag) {
  int size = expected;
  return camera.Transfer(cdb, kFromCamera, size, static_cast<char*>(answer), flag) ? size : 0;
}

bool AskSelectedSize(Camera& camera, bool flag, std::uint32_t& size) {
  char answer[4] = {};
  int moved = sizeof(answer);
  if (!camera.Transfer(Block(Operation::kQuery, query::kSelectedSize), kFromCamera, moved, answer, flag)) return false;
  size = LoadU32(answer);
  return true;
}

std::size_t BytesArrived(int moved, std::size_t capacity) {
  return moved <= 0 ? 0 : std::min(static_cast<std::size_t>(moved), capacity);
}

}  // namespace kelva

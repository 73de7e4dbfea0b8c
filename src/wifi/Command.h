#ifndef KELVA_WIFI_COMMAND_H_
#define KELVA_WIFI_COMMAND_H_

#include <cstddef>
#include <cstdint>

#include "Camera.h"
#include "VscRegister.h"

namespace kelva {

/// A zeroed command block with its operation code.
_VscCdb Block(Operation operation);

/// A zeroed command block with its operation code and sub-code.
_VscCdb Block(Operation operation, std::uint8_t subCode);

/// Sends a command without a data phase; the transfer's result.
bool SendCommand(Camera& camera, const _VscCdb& cdb, bool flag);

/// Sends a command whose data phase to the camera is `size` bytes; the transfer's result.
bool SendBytes(Camera& camera, const _VscCdb& cdb, const char* bytes, int size, bool flag);

/// Sends a command whose data phase is a text with its NUL; false, with nothing sent, when no 32-bit size can hold it.
bool SendText(Camera& camera, const _VscCdb& cdb, const char* text, std::size_t length, bool flag);
bool SendText(Camera& camera, const _VscCdb& cdb, const char* text, bool flag);

/// Asks for an answer of `expected` bytes into `answer`. Returns the size written back; a transfer that returned false
/// counts as 0.
int ReadAnswer(Camera& camera, const _VscCdb& cdb, void* answer, int expected, bool flag);

/// Asks how large the selected data set is. False when the transfer returned false; bytes that did not come are zero.
bool AskSelectedSize(Camera& camera, bool flag, std::uint32_t& size);

/// How many of `capacity` bytes really hold an answer of which the transport reported `moved`.
std::size_t BytesArrived(int moved, std::size_t capacity);

}  // namespace kelva

#endif  // KELVA_WIFI_COMMAND_H_

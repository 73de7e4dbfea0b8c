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

/// Sends a command without a data phase. Returns the transfer's result.
bool SendCommand(Camera& camera, const _VscCdb& cdb, bool flag);

/// Sends a command with `size` bytes to the camera. Returns the transfer's result.
bool SendBytes(Camera& camera, const _VscCdb& cdb, const char* bytes, int size, bool flag);

/// Sends a command with a text and its NUL to the camera. Returns the transfer's result; false, without a transfer,
/// when the length exceeds 32 bits.
bool SendText(Camera& camera, const _VscCdb& cdb, const char* text, std::size_t length, bool flag);
bool SendText(Camera& camera, const _VscCdb& cdb, const char* text, bool flag);

/// Asks for `expected` bytes into `answer`. Returns the size that the transport wrote back, or 0 when the transfer
/// returned false.
int ReadAnswer(Camera& camera, const _VscCdb& cdb, void* answer, int expected, bool flag);

/// Asks the size of the selected data set. False when the transfer returned false. Bytes missing from a short answer
/// count as 0.
bool AskSelectedSize(Camera& camera, bool flag, std::uint32_t& size);

/// How many bytes of the buffer an answer filled: a transport may report a negative count or more than it was given.
std::size_t BytesArrived(int moved, std::size_t capacity);

}  // namespace kelva

#endif  // KELVA_WIFI_COMMAND_H_

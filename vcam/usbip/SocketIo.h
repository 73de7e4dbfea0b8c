#ifndef KELVA_VCAM_USBIP_SOCKET_IO_H_
#define KELVA_VCAM_USBIP_SOCKET_IO_H_

#include <cstdint>
#include <span>

namespace vcam::usbip {

/// Sends both parts, one behind the other, whole. False when the peer has gone; never raises SIGPIPE.
bool SendAll(int socket, std::span<const std::uint8_t> head, std::span<const std::uint8_t> body);

/// Fills `bytes`. False when the peer has gone, or has not sent them all within the receive time-out of the socket.
bool ReceiveAll(int socket, std::span<std::uint8_t> bytes);

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_SOCKET_IO_H_

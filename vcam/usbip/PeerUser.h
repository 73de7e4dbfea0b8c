#ifndef KELVA_VCAM_USBIP_PEER_USER_H_
#define KELVA_VCAM_USBIP_PEER_USER_H_

#include <netinet/in.h>
#include <sys/types.h>

#include <optional>
#include <string_view>

// Whose process is at the other end of a TCP connection within this machine.

namespace vcam::usbip {

/// The user whose process holds the other end of a connected IPv4 socket. Nothing when that cannot be told with
/// certainty: the other end is not on this machine, or either end has begun to close.
std::optional<uid_t> PeerUser(int socket);

/// The user of the established socket from `local` to `remote` in a table as the kernel writes it (/proc/net/tcp or
/// /proc/net/tcp6); nothing when it has none, or none that a process holds.
std::optional<uid_t> UserInTable(std::string_view table, const sockaddr_in& local, const sockaddr_in& remote);

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_PEER_USER_H_

// Looks up the other end of a loopback connection in the kernel's tables of TCP sockets.
#include "vcam/usbip/PeerUser.h"

#include <netinet/tcp.h>
#include <sys/socket.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

namespace vcam::usbip {
namespace {

constexpr std::string_view kEstablished = "01";

/// An address as the tables write it: the kernel's words in the order of this machine, in hexadecimal.
std::string AsIpv4(const sockaddr_in& address) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%08X:%04X", address.sin_addr.s_addr, ntohs(address.sin_port));
  return text.data();
}

/// The same address as a socket of IPv6 has it.
std::string AsIpv6(const sockaddr_in& address) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%016X%08X", 0U, htonl(0xFFFFU));
  return text.data() + AsIpv4(address);
}

std::optional<uid_t> UserOfLine(const std::string& line, const sockaddr_in& local, const sockaddr_in& remote) {
  std::istringstream words(line);
  std::string number, from, to, state, queues, timer, retries, timeout;
  uid_t user = 0;
  unsigned long inode = 0;
  if (!(words >> number >> from >> to >> state >> queues >> timer >> retries >> user >> timeout >> inode)) return {};
  const bool same = (from == AsIpv4(local) && to == AsIpv4(remote)) || (from == AsIpv6(local) && to == AsIpv6(remote));
  // Without an inode no process holds the socket, and the kernel writes user 0.
  return same && state == kEstablished && inode != 0 ? std::optional(user) : std::nullopt;
}

std::string ReadFile(const char* path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

bool Established(int socket) {
  tcp_info info{};
  socklen_t size = sizeof info;
  return ::getsockopt(socket, IPPROTO_TCP, TCP_INFO, &info, &size) == 0 && info.tcpi_state == TCP_ESTABLISHED;
}

}  // namespace

std::optional<uid_t> UserInTable(std::string_view table, const sockaddr_in& local, const sockaddr_in& remote) {
  std::istringstream lines{std::string(table)};
  for (std::string line; std::getline(lines, line);) {
    if (const auto user = UserOfLine(line, local, remote)) return user;
  }
  return std::nullopt;
}

std::optional<uid_t> PeerUser(int socket) {
  sockaddr_in near{};
  sockaddr_in far{};
  socklen_t nearSize = sizeof near;
  socklen_t farSize = sizeof far;
  if (::getsockname(socket, reinterpret_cast<sockaddr*>(&near), &nearSize) != 0 || near.sin_family != AF_INET ||
      ::getpeername(socket, reinterpret_cast<sockaddr*>(&far), &farSize) != 0) {
    return std::nullopt;
  }
  for (const char* table : {"/proc/net/tcp", "/proc/net/tcp6"}) {
    const auto user = UserInTable(ReadFile(table), far, near);
    // As long as this end is connected, no other socket can have taken the peer's address.
    if (user) return Established(socket) ? user : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace vcam::usbip

// Looks up the other end of a loopback connection among the kernel's TCP sockets.
#include "vcam/usbip/PeerUser.h"

#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "base/FileDescriptor.h"

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

// Every user of the machine can make the tables long and have them read again for each connection that is refused.
constexpr std::size_t kLargestTable = 4U << 20;

/// A table; empty when it is longer than that.
std::string ReadTable(const char* path) {
  std::ifstream file(path);
  std::string table(kLargestTable + 1, '\0');
  file.read(table.data(), static_cast<std::streamsize>(table.size()));
  table.resize(static_cast<std::size_t>(file.gcount()));
  return table.size() > kLargestTable ? "" : table;
}

struct Question {
  nlmsghdr head;
  inet_diag_req_v2 about;
};
struct Answer {
  nlmsghdr head;
  union {
    inet_diag_msg about;
    nlmsgerr error;
  };
};

Question AboutSocket(const sockaddr_in& local, const sockaddr_in& remote) {
  Question question{};
  question.head.nlmsg_len = sizeof question;
  question.head.nlmsg_type = SOCK_DIAG_BY_FAMILY;
  question.head.nlmsg_flags = NLM_F_REQUEST;
  question.about.sdiag_family = AF_INET;
  question.about.sdiag_protocol = IPPROTO_TCP;
  question.about.idiag_states = 1U << TCP_ESTABLISHED;
  question.about.id.idiag_sport = local.sin_port;
  question.about.id.idiag_dport = remote.sin_port;
  question.about.id.idiag_src[0] = local.sin_addr.s_addr;
  question.about.id.idiag_dst[0] = remote.sin_addr.s_addr;
  for (auto& half : question.about.id.idiag_cookie) half = INET_DIAG_NOCOOKIE;
  return question;
}

/// Asks the kernel for one socket, which costs the same however many there are. False when it cannot be asked.
bool AskKernel(const sockaddr_in& local, const sockaddr_in& remote, std::optional<uid_t>& user) {
  const base::FileDescriptor netlink(::socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC, NETLINK_SOCK_DIAG));
  const Question question = AboutSocket(local, remote);
  Answer answer{};
  if (!netlink || ::send(netlink.Get(), &question, sizeof question, 0) != sizeof question) return false;
  // The kernel has answered when send returns.
  const ssize_t size = ::recv(netlink.Get(), &answer, sizeof answer, MSG_DONTWAIT);
  if (size < static_cast<ssize_t>(sizeof answer.head)) return false;
  // Also ENOENT, which says either that there is no such socket, or that this kernel lacks the part that would know.
  if (answer.head.nlmsg_type == NLMSG_ERROR) return false;
  if (answer.head.nlmsg_type != SOCK_DIAG_BY_FAMILY || size < static_cast<ssize_t>(NLMSG_LENGTH(sizeof answer.about))) {
    return false;
  }
  // The kernel answers with a listening socket when no connection has these addresses.
  const inet_diag_sockid& id = answer.about.id;
  const bool same = id.idiag_sport == local.sin_port && id.idiag_dport == remote.sin_port;
  if (same && answer.about.idiag_state == TCP_ESTABLISHED && answer.about.idiag_inode != 0) {
    user = answer.about.idiag_uid;
  }
  return true;
}

std::optional<uid_t> UserOfSocket(const sockaddr_in& local, const sockaddr_in& remote) {
  std::optional<uid_t> user;
  if (AskKernel(local, remote, user)) return user;
  for (const char* table : {"/proc/net/tcp", "/proc/net/tcp6"}) {
    user = UserInTable(ReadTable(table), local, remote);
    if (user) break;
  }
  return user;
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
  const std::optional<uid_t> user = UserOfSocket(far, near);
  // As long as this end is connected, no other socket can have taken the peer's address.
  return Established(socket) ? user : std::nullopt;
}

}  // namespace vcam::usbip

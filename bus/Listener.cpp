// Local sockets: listens at a path where a dead socket may lie, and connects to one.
#include "bus/Listener.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <stdexcept>

#include "platform/Sockets.h"

namespace bus {
namespace {

// A path ends with a NUL.
constexpr std::size_t kLongestPath = sizeof sockaddr_un::sun_path - 1;

std::optional<sockaddr_un> AddressOf(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.empty() || path.size() > kLongestPath || path.find('\0') != std::string::npos) {
    return std::nullopt;
  }
  std::memcpy(address.sun_path, path.data(), path.size());
  return address;
}

const sockaddr* Generic(const sockaddr_un& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

/// Keeps errno.
base::FileDescriptor TryConnect(const sockaddr_un& address) {
  base::FileDescriptor socket(platform::LocalSocket());
  if (!socket || ::connect(socket.Get(), Generic(address), sizeof address) != 0) {
    const int error = errno;
    socket.Reset();
    errno = error;
  }
  return socket;
}

std::runtime_error CannotServe(const std::string& path, const std::string& why) {
  return std::runtime_error("Cannot serve the bus at " + path + ": " + why);
}

/// Frees the path when it is a socket that nobody serves.
void RemoveStale(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return;
  if (!S_ISSOCK(status.st_mode)) throw CannotServe(path, "a file of that name exists; choose another path.");
  if (ConnectTo(path)) throw CannotServe(path, "another process serves it already; choose another path.");
  if (errno == ECONNREFUSED) ::unlink(path.c_str());
}

}  // namespace

Listener::Listener(const std::string& path) : path_(path) {
  const auto address = AddressOf(path);
  if (!address) {
    throw CannotServe(path,
                      "a socket's path has 1 to " + std::to_string(kLongestPath) + " bytes; choose a shorter one.");
  }
  RemoveStale(path);
  socket_ = base::FileDescriptor(platform::LocalSocket());
  const mode_t mask = ::umask(0077);
  const bool bound = socket_ && platform::SetNonBlocking(socket_.Get()) == 0 &&
                     ::bind(socket_.Get(), Generic(*address), sizeof *address) == 0;
  const int error = errno;
  ::umask(mask);
  if (!bound) throw CannotServe(path, std::string(std::strerror(error)) + "; choose a path in a folder of yours.");
  struct stat status {};
  if (::lstat(path.c_str(), &status) == 0) inode_ = status.st_ino;
  if (::listen(socket_.Get(), SOMAXCONN) != 0) throw CannotServe(path, std::strerror(errno));
}

Listener::~Listener() {
  // Only if the socket is still ours: another bus may have taken the path.
  struct stat status {};
  if (::lstat(path_.c_str(), &status) == 0 && status.st_ino == inode_) ::unlink(path_.c_str());
}

base::FileDescriptor Listener::Accept() const {
  return base::FileDescriptor(platform::Accept(socket_.Get()));
}

base::FileDescriptor ConnectTo(const std::string& path) {
  return ConnectTo(path, [] { ::poll(nullptr, 0, 10); });
}

base::FileDescriptor ConnectTo(const std::string& path, const std::function<void()>& wait) {
  const auto address = AddressOf(path);
  if (!address) {
    errno = ENAMETOOLONG;
    return {};
  }
  // A bus that starts has its path a moment before it takes connections. A path that a dead one left is given up soon.
  constexpr int kAttempts = 20;
  base::FileDescriptor socket = TryConnect(*address);
  for (int i = 1; i < kAttempts && !socket && errno == ECONNREFUSED; ++i) {
    wait();
    socket = TryConnect(*address);
  }
  return socket;
}

}  // namespace bus

// Keeps a second agent out of the same login session.

#include "src/ui/linux/KelvaHelper/SessionLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/utsname.h>

#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace helper {
namespace {

constexpr mode_t kLockMode = S_IRUSR | S_IWUSR;

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

/// Cuts the parts of a bus address that name one start of the bus daemon ("guid=..."): some processes of a session are
/// told them and others are not.
std::string_view WithoutGuid(std::string_view address) {
  return address.substr(0, address.find(",guid="));
}

/// FNV-1a, 64 bits: short names from long keys. Nothing here is secret.
std::uint64_t Hash(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
  return hash;
}

std::string Hexadecimal(std::uint64_t value) {
  char digits[16];
  const auto end = std::to_chars(digits, digits + sizeof digits, value, 16).ptr;
  return {digits, end};
}

pid_t ReadProcessId(int file) {
  char text[24];
  const ssize_t length = ::pread(file, text, sizeof text, 0);
  pid_t process = 0;
  if (length > 0) std::from_chars(text, text + length, process);
  return process;
}

/// Leaves this process's number for a rival's message, and the sticky bit that keeps cleaners of the run-time folder
/// away. The lock holds without either.
void SignFile(int file) {
  const std::string text = std::to_string(::getpid()) + "\n";
  const bool done = ::fchmod(file, kLockMode | S_ISVTX) == 0 && ::ftruncate(file, 0) == 0 &&
                    ::pwrite(file, text.data(), text.size(), 0) > 0;
  static_cast<void>(done);
}

/// True for a plain file of this user: where the folder is open to all, somebody else may have put another one there.
bool IsOurs(int file) {
  struct stat status;
  return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid();
}

std::string MachineName() {
  utsname name;
  return ::uname(&name) == 0 ? name.nodename : "";
}

}  // namespace

SessionIdentity CurrentSession(const std::string& virtualBus) {
  SessionIdentity session;
  session.runtimeDirectory = Environment("XDG_RUNTIME_DIR");
  session.home = Environment("HOME");
  session.machine = MachineName();
  session.busAddress = Environment("DBUS_SESSION_BUS_ADDRESS");
  session.virtualBus = virtualBus;
  return session;
}

std::string LockPath(const SessionIdentity& session) {
  std::string key(WithoutGuid(session.busAddress));
  // The user manager's own bus is found by its place when no address is given.
  if (key.empty()) key = "unix:path=" + session.runtimeDirectory + "/bus";
  key += '\n' + session.virtualBus;
  if (!session.runtimeDirectory.empty()) {
    return session.runtimeDirectory + "/kelva-helper-" + Hexadecimal(Hash(key)) + ".lock";
  }
  return session.home + "/.cache/kelva-helper/" + Hexadecimal(Hash(key + '\n' + session.machine)) + ".lock";
}

int MakeLockFolder(const std::string& lockPath, const std::string& home) {
  if (!home.empty() && lockPath.compare(0, home.size() + 1, home + '/') == 0) {
    for (std::size_t end = lockPath.find('/', home.size() + 1); end != std::string::npos;
         end = lockPath.find('/', end + 1)) {
      ::mkdir(lockPath.substr(0, end).c_str(), S_IRWXU);
    }
  }
  const std::string folder = lockPath.substr(0, lockPath.rfind('/'));
  struct stat status;
  if (::lstat(folder.c_str(), &status) != 0) return errno;
  const bool ours = S_ISDIR(status.st_mode) && status.st_uid == ::geteuid();
  return ours && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0 ? 0 : EPERM;
}

SessionLock::SessionLock(const std::string& path)
    : file_(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, kLockMode)),
      outcome_(file_ ? Take() : Failed(errno)) {}

SessionLock::Outcome SessionLock::Take() {
  if (!IsOurs(file_.Get())) return Failed(EPERM);
  if (::flock(file_.Get(), LOCK_EX | LOCK_NB) == 0) {
    SignFile(file_.Get());
    return Outcome::kHeld;
  }
  if (errno != EWOULDBLOCK) return Failed(errno);
  rival_ = ReadProcessId(file_.Get());
  return Outcome::kHeldByAnother;
}

SessionLock::Outcome SessionLock::Failed(int error) {
  error_ = error;
  return Outcome::kFailed;
}

}  // namespace helper

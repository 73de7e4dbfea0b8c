// Reads a passphrase without showing it.
#include "apps/kelva/verbs/Secret.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Output.h"
#include "base/FileDescriptor.h"
#include "base/SendAll.h"
#include "platform/Process.h"

namespace apps {
namespace {

// Keeps a terminal from showing what is typed.
class Silence {
 public:
  explicit Silence(int fd) : fd_(fd) {
    if (::tcgetattr(fd, &before_) != 0) throw SystemFailure("read the terminal's settings", errno);
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    ::tcsetattr(fd, TCSAFLUSH, &silent);
  }
  ~Silence() {
    ::tcsetattr(fd_, TCSAFLUSH, &before_);
    base::WriteAll(fd_, "\n");
  }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;

 private:
  int fd_;
  termios before_{};
};

// One byte at a time: what follows the line belongs to whoever reads next.
std::string ReadLine(int fd, const Stop& stop) {
  std::string line;
  constexpr std::size_t kLongest = 4096;
  while (line.size() < kLongest) {
    pollfd ready{fd, POLLIN, 0};
    constexpr int kLookMs = 200;
    ::poll(&ready, 1, kLookMs);
    stop.Check();
    if (ready.revents == 0) continue;
    char c = 0;
    const ssize_t size = ::read(fd, &c, 1);
    if (size < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (size <= 0 || c == '\n') break;
    line += c;
  }
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

// The limit is enough for a dump into a file. A dump into a program ignores it, but not the attribute.
void LeaveNoCoreDump() {
  const rlimit none{0, 0};
  ::setrlimit(RLIMIT_CORE, &none);
  platform::ForbidDump();
}

}  // namespace

std::string ReadSecret(const std::string& prompt, const Stop& stop) {
  LeaveNoCoreDump();
  std::string line;
  if (::isatty(STDIN_FILENO) != 1) {
    line = ReadLine(STDIN_FILENO, stop);
  } else {
    const base::FileDescriptor terminal(::open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY));
    if (!terminal) throw SystemFailure("open the terminal", errno);
    const Silence silence(terminal.Get());
    base::WriteAll(terminal.Get(), prompt);
    line = ReadLine(terminal.Get(), stop);
  }
  if (line.empty()) throw Failure(ExitCode::kUsage, "Nothing was entered; nothing was changed.");
  return line;
}

}  // namespace apps

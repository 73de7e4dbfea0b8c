// Starts the process that decodes pictures, and talks to it.
#include "apps/thumbnails/Thumbnailer.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/ProgramBeside.h"
#include "apps/decoder/Worker.h"
#include "platform/Process.h"
#include "platform/Processors.h"
#include "platform/Sockets.h"

namespace apps {
namespace {

using Clock = std::chrono::steady_clock;

// A new process now and then: the bound of its processor time is for all that it draws.
constexpr int kPicturesPerProcess = 500;
constexpr int kSocketBuffer = 1 << 20;

/// What the child starts with: the socket as its standard input, nothing else that is open, no environment, and a process
/// group of its own, since Ctrl-C is meant for this process alone.
class Setup {
 public:
  explicit Setup(int socket) {
    sigset_t all;
    sigset_t none;
    ::sigfillset(&all);
    ::sigemptyset(&none);
    ::posix_spawn_file_actions_init(&actions_);
    ::posix_spawn_file_actions_adddup2(&actions_, socket, STDIN_FILENO);
    ::posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    ::posix_spawnattr_init(&attributes_);
    ::posix_spawnattr_setsigdefault(&attributes_, &all);
    ::posix_spawnattr_setsigmask(&attributes_, &none);
    constexpr short kFlags = POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP;
    platform::PassStandardDescriptorsAlone(attributes_, kFlags, actions_);
  }
  ~Setup() {
    ::posix_spawnattr_destroy(&attributes_);
    ::posix_spawn_file_actions_destroy(&actions_);
  }
  Setup(const Setup&) = delete;
  Setup& operator=(const Setup&) = delete;

  int Spawn(pid_t& child, std::string program) const {
    char* const arguments[] = {program.data(), nullptr};
    char* const environment[] = {nullptr};
    const platform::NoOwnProcessor none;
    return ::posix_spawn(&child, program.c_str(), &actions_, &attributes_, arguments, environment);
  }

 private:
  posix_spawnattr_t attributes_{};
  posix_spawn_file_actions_t actions_{};
};

/// The head of a request.
std::array<char, sizeof(std::uint64_t)> Size(std::uint64_t size) {
  std::array<char, sizeof size> bytes{};
  std::memcpy(bytes.data(), &size, sizeof size);
  return bytes;
}

/// The end of a sentence.
std::string HowEnded(int status) {
  return WIFSIGNALED(status) ? "was killed by signal " + std::to_string(WTERMSIG(status))
                             : "ended with status " + std::to_string(WEXITSTATUS(status));
}

}  // namespace

/// One question and its answer over a socket that does not block. Its members are false once the other end has gone, or
/// time is over.
class Thumbnailer::Exchange {
 public:
  Exchange(int socket, const Stop& stop, std::chrono::milliseconds patience)
      : socket_(socket), stop_(stop), end_(Clock::now() + patience) {}

  bool Send(std::span<const char> bytes) {
    return bytes.size() == Move(POLLOUT, bytes.size(), [&](std::size_t from) {
             return platform::Send(socket_, bytes.data() + from, bytes.size() - from, MSG_DONTWAIT);
           });
  }
  bool Receive(std::span<std::uint8_t> bytes) { return ReceiveSome(bytes) == bytes.size(); }
  /// How many bytes came.
  std::size_t ReceiveSome(std::span<std::uint8_t> bytes) {
    return Move(POLLIN, bytes.size(), [&](std::size_t from) {
      return ::recv(socket_, bytes.data() + from, bytes.size() - from, MSG_DONTWAIT);
    });
  }
  bool TimeIsOver() const { return Clock::now() >= end_; }

 private:
  template <typename Call>
  std::size_t Move(short event, std::size_t size, Call call) {
    std::size_t moved = 0;
    while (moved < size) {
      const ssize_t count = call(moved);
      if (count > 0) {
        moved += static_cast<std::size_t>(count);
      } else if (count == 0 || (errno != EAGAIN && errno != EINTR) || !Wait(event)) {
        break;
      }
    }
    return moved;
  }
  bool Wait(short event) {
    constexpr int kLookMs = 100;
    stop_.Check();
    pollfd ready{socket_, event, 0};
    ::poll(&ready, 1, kLookMs);
    return !TimeIsOver();
  }

  const int socket_;
  const Stop& stop_;
  const Clock::time_point end_;
};

std::string Thumbnailer::ProgramBeside(const std::string& program) {
  return apps::ProgramBeside(program, "kelva-thumbnail");
}

std::string Thumbnailer::OwnProgram() {
  return platform::OwnProgram();
}

void Thumbnailer::Start(const Stop& stop, std::chrono::milliseconds patience) {
  Spawn();
  Exchange exchange(socket_.Get(), stop, patience);
  std::array<std::uint8_t, kReady.size()> ready{};
  if (!exchange.Receive(ready)) FailToStart(exchange.TimeIsOver());
  if (std::equal(ready.begin(), ready.end(), kReady.begin())) return;
  Reap();
  throw Failure(ExitCode::kFailed,
                Printable(program_) + " speaks another language than this kelva; install both from one version.");
}

void Thumbnailer::FailToStart(bool silent) {
  const int status = Reap();
  if (!silent && WIFEXITED(status) && WEXITSTATUS(status) == kCannotConfine) {
    throw Failure(ExitCode::kFailed,
                  "The system does not let " + Printable(program_) +
                      " give up its rights, so no picture was decoded; run kelva where seccomp is allowed, outside of "
                      "a container that forbids it.");
  }
  throw Failure(ExitCode::kFailed, "Cannot run " + Printable(program_) + ", which decodes the pictures: it " +
                                       (silent ? "is silent" : HowEnded(status)) + "; install kelva again.");
}

void Thumbnailer::Spawn() {
  std::array<int, 2> ends{};
  if (platform::SocketPair(ends) != 0) throw SystemFailure("make a socket", errno);
  socket_.Reset(ends[0]);
  const base::FileDescriptor far(ends[1]);
  for (const int end : ends) ::setsockopt(end, SOL_SOCKET, SO_SNDBUF, &kSocketBuffer, sizeof kSocketBuffer);
  const int error = Setup(far.Get()).Spawn(process_, program_);
  drawn_ = 0;
  if (error == 0) return;
  process_ = 0;
  throw Failure(ExitCode::kFailed, "Cannot run " + Printable(program_) + ", which decodes the pictures: " +
                                       std::strerror(error) + "; install kelva again.");
}

int Thumbnailer::Reap() {
  socket_.Reset();
  int status = 0;
  if (process_ == 0) return status;
  ::kill(process_, SIGKILL);
  while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
  }
  process_ = 0;
  return status;
}

DrawingOrReason Thumbnailer::Draw(std::span<const char> jpegFile, const Stop& stop,
                                  std::chrono::milliseconds patience) {
  if (jpegFile.size() > kLargestPicture) return "it is larger than a file that a thumbnail is drawn from";
  return Ask(jpegFile.size(), jpegFile, stop, patience);
}

DrawingOrReason Thumbnailer::DrawLarge(std::span<const char> jpegFile, const Stop& stop,
                                       std::chrono::milliseconds patience) {
  if (jpegFile.size() > kLargestPicture) return "it is larger than a file that is shown";
  return Ask(kShownLarge | jpegFile.size(), jpegFile, stop, patience);
}

DrawingOrReason Thumbnailer::DrawStart(std::span<const char> start, const Stop& stop,
                                       std::chrono::milliseconds patience) {
  return Ask(kStartOnly | start.size(), start, stop, patience);
}

DrawingOrReason Thumbnailer::Ask(std::uint64_t size, std::span<const char> bytes, const Stop& stop,
                                 std::chrono::milliseconds patience) {
  if (process_ != 0 && drawn_ == kPicturesPerProcess) Reap();
  if (process_ == 0) Start(stop, patience);
  ++drawn_;
  Exchange exchange(socket_.Get(), stop, patience);
  const int longest = (size & kShownLarge) != 0 ? kLargeSide : kThumbnailSide;
  std::array<std::uint8_t, kAnswerHead> head{};
  base::Bytes rest;
  bool came = exchange.Send(Size(size)) && exchange.Send(bytes) && exchange.Receive(head);
  const std::optional<std::size_t> more = came ? SizeAfter(head, longest) : std::nullopt;
  if (more) {
    rest.resize(*more);
    came = exchange.Receive(rest);
  }
  if (more && came) {
    if (auto answer = DecodeAnswer(head, rest, longest)) return *std::move(answer);
  }
  if (exchange.TimeIsOver()) return Reap(), "the process that draws it does not come to an end";
  if (came) return Reap(), "the process that draws it answers in another language";
  // Killed by what it did, not by Reap: it has gone already.
  return "the process that draws it " + HowEnded(Reap());
}

std::vector<std::optional<std::string>> Thumbnailer::Times(const TimeQuestions& questions, const Stop& stop,
                                                           std::chrono::milliseconds patience) {
  constexpr int kMostSilences = 3;
  std::vector<std::optional<std::string>> times;
  while (times.size() < questions.Count()) {
    if (process_ == 0) Start(stop, patience);
    Exchange exchange(socket_.Get(), stop, patience);
    exchange.Send(questions.From(times.size()));  // a process that ends may have answered before
    base::Bytes answers((questions.Count() - times.size()) * kTimeAnswer);
    answers.resize(exchange.ReceiveSome(answers) / kTimeAnswer * kTimeAnswer);
    for (std::size_t at = 0; at < answers.size(); at += kTimeAnswer) {
      times.push_back(DecodeTime(std::span(answers).subspan(at).first<kTimeAnswer>()));
    }
    if (times.size() == questions.Count()) break;
    // The first picture without an answer has ended the process, or keeps it busy. The others are asked again.
    times.emplace_back();
    silences_ += exchange.TimeIsOver() ? 1 : 0;
    Reap();
    if (silences_ == kMostSilences) {
      throw Failure(ExitCode::kFailed, Printable(program_) + ", which reads the times of pictures, does not answer.");
    }
  }
  return times;
}

void TimeQuestions::Add(std::span<const char> start) {
  const auto size = Size(kTimeOnly | start.size());
  bytes_.insert(bytes_.end(), size.begin(), size.end());
  bytes_.insert(bytes_.end(), start.begin(), start.end());
  ends_.push_back(bytes_.size());
}

std::span<const char> TimeQuestions::From(std::size_t index) const {
  return std::span(bytes_).subspan(index == 0 ? 0 : ends_[index - 1]);
}

void TimeQuestions::Clear() {
  bytes_.clear();
  ends_.clear();
}

}  // namespace apps

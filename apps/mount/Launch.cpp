// Starts mounts in the background, and waits until they stand.
#include "apps/mount/Launch.h"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/camera/Attached.h"
#include "apps/camera/Turns.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/mount/Mount.h"
#include "apps/mount/Source.h"
#include "base/FileDescriptor.h"
#include "platform/Process.h"
#include "platform/Sockets.h"

namespace apps {
namespace {

using std::chrono::milliseconds;

// With the ten seconds of a camera that another program holds, fifteen.
constexpr milliseconds kToOpen{5000};

/// This program once more, in a session of its own, with its standard output in a pipe.
class Daemon {
 public:
  Daemon(std::vector<std::string> words) : words_(std::move(words)) { Start(); }

  using Clock = std::chrono::steady_clock;

  /// What it prints until its mount stands or it ends. Nothing when neither has happened by `until`: it is then ended.
  /// Throws Stopped.
  std::optional<std::string> Said(const Stop& stop, std::optional<Clock::time_point> until) {
    std::string text;
    std::array<char, 4096> bytes{};
    for (;;) {
      if (until && Clock::now() >= *until) return End(), std::nullopt;
      pollfd ready{output_.Get(), POLLIN, 0};
      constexpr int kLook = 50;
      const int count = ::poll(&ready, 1, kLook);
      if (stop.Requested()) ::kill(process_, SIGTERM);
      stop.Check();
      if (count <= 0) continue;
      const ssize_t came = ::read(output_.Get(), bytes.data(), bytes.size());
      if (came < 0 && errno == EINTR) continue;
      if (came <= 0) return text;
      text.append(bytes.data(), static_cast<std::size_t>(came));
    }
  }

  /// How it ended, when it ended before its mount stood.
  ExitCode Status() const {
    int status = 0;
    while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) && WEXITSTATUS(status) != 0 ? static_cast<ExitCode>(WEXITSTATUS(status))
                                                         : ExitCode::kFailed;
  }

 private:
  void End() const {
    constexpr int kPolite = 40;
    constexpr int kLook = 50;
    ::kill(process_, SIGTERM);
    for (int i = 0; i < kPolite && ::waitpid(process_, nullptr, WNOHANG) == 0; ++i) ::poll(nullptr, 0, kLook);
    ::kill(process_, SIGKILL);
    while (::waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
    }
  }

  void Start() {
    std::array<int, 2> ends{-1, -1};
    if (platform::Pipe(ends) != 0) throw SystemFailure("make a pipe", errno);
    output_.Reset(ends[0]);
    const base::FileDescriptor far(ends[1]);
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawnattr_init(&attributes);
    ::posix_spawn_file_actions_adddup2(&actions, far.Get(), STDOUT_FILENO);
    platform::PassStandardDescriptorsAlone(attributes, POSIX_SPAWN_SETSID, actions);
    std::string name(kDaemonName);
    std::vector<char*> words = {name.data()};
    for (std::string& word : words_) words.push_back(word.data());
    words.push_back(nullptr);
    const int error = ::posix_spawn(&process_, platform::OwnImage().c_str(), &actions, &attributes, words.data(),
                                    platform::Environment());
    ::posix_spawn_file_actions_destroy(&actions);
    ::posix_spawnattr_destroy(&attributes);
    if (error != 0) throw SystemFailure("start kelva-mount once more", error);
  }

  std::vector<std::string> words_;
  base::FileDescriptor output_;
  pid_t process_ = 0;
};

std::vector<std::string> WordsFor(const Context& context, const std::string& serial) {
  std::vector<std::string> words = {"mount"};
  for (const char* option : {"virtual", "wait-busy", "trace"}) {
    if (const auto value = context.call.Value(option)) words.push_back("--" + std::string(option) + "=" + *value);
  }
  for (const char* option : {"json", "quiet", "verbose", "writable", "trace-private"}) {
    if (context.call.Has(option)) words.push_back("--" + std::string(option));
  }
  words.push_back("--serial=" + (serial.empty() ? std::string(kWithoutSerial) : serial));
  words.emplace_back("--");
  words.insert(words.end(), context.call.words.begin(), context.call.words.end());
  return words;
}

struct Launched {
  bool mounted;
  std::string said;
  ExitCode code;
};

Launched Launch(Context& context, const std::string& serial, std::optional<milliseconds> patience = std::nullopt) {
  Daemon daemon(WordsFor(context, serial));
  const auto until = patience ? std::optional(Daemon::Clock::now() + *patience) : std::nullopt;
  const auto said = daemon.Said(context.stop, until);
  if (!said) {
    context.reporter.Error("Camera " + Printable(serial) + " has not become a folder within " +
                               std::to_string(patience->count() / 1000) +
                               " seconds; it may hang. Unplug it and plug it in again.",
                           ExitCode::kTimedOut);
    return {false, "", ExitCode::kTimedOut};
  }
  const std::string_view first = context.Json() ? "{\"schema\":1,\"event\":\"mounted\"" : "Mounted ";
  if (said->starts_with(first)) return {true, *said, ExitCode::kDone};
  return {false, *said, daemon.Status()};
}

ExitCode MountOne(Context& context) {
  const AttachedCamera chosen = Choose(FindAttached(context.diversion), WantedSerial(context.call.Value("serial")));
  const Launched launched = Launch(context, chosen.facts.serial);
  context.out.Write(launched.said);
  if (launched.mounted) {
    return context.Result(Json::Object().SetBytes("serial", chosen.facts.serial).Set("mounts", 1), "");
  }
  static_cast<void>(context.out.TakeEnd());  // the other process has said the result
  return launched.code;
}

ExitCode MountAll(Context& context) {
  const std::vector<AttachedCamera> attached = FindAttached(context.diversion);
  if (attached.empty()) Choose(attached, std::nullopt);  // says what is wrong
  // One camera that hangs does not keep the others from becoming folders.
  const milliseconds patience = WaitBusy(context) + kToOpen;
  int mounts = 0;
  std::vector<ExitCode> failures;
  for (const AttachedCamera& camera : attached) {
    const std::string& serial = camera.facts.serial;
    if (const auto path = MountOf(serial, context.call.Value("virtual"))) {
      context.Event("mounted",
                    Json::Object().SetBytes("serial", serial).SetBytes("path", *path).Set("was_mounted", true),
                    "Camera " + Printable(serial) + " is mounted on " + Printable(*path) + " already\n");
      ++mounts;
      continue;
    }
    const Launched launched = Launch(context, serial, patience);
    if (launched.mounted) {
      context.out.Write(launched.said);
      ++mounts;
    } else {
      failures.push_back(launched.code);
    }
  }
  const ExitCode code = failures.empty() ? ExitCode::kDone : mounts != 0 ? ExitCode::kPartial : failures.front();
  return context.Result(Json::Object().Set("mounts", mounts), "", code);
}

}  // namespace

ExitCode RunMount(Context& context) {
  context.Doing("mount the camera");
  const bool all = context.call.Has("all");
  if (all && (context.call.Has("foreground") || context.call.Has("serial") || !context.call.words.empty())) {
    throw Failure(ExitCode::kUsage,
                  "--all mounts each camera on a folder of its own in the background; it goes without "
                  "DIR, --serial and --foreground.");
  }
  if (all) return MountAll(context);
  return context.call.Has("foreground") ? MountHere(context) : MountOne(context);
}

}  // namespace apps

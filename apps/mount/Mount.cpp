// One mount from its start to its end.
#include "apps/mount/Mount.h"

#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <exception>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include "apps/camera/Attached.h"
#include "apps/camera/Hotplug.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/mount/FileSystem.h"
#include "apps/mount/Keeper.h"
#include "apps/mount/Kernel.h"
#include "apps/mount/Place.h"
#include "apps/mount/Source.h"

namespace apps {
namespace {

using namespace std::chrono_literals;

// A camera that was unplugged answers for this long to whoever still has its files open.
constexpr auto kLastWords = 5s;
// A command that hangs does not keep a mount from its end.
constexpr auto kPatience = 300ms;

void CheckNotMounted(const std::string& serial, const std::optional<std::string>& bus) {
  const auto path = serial.empty() ? std::nullopt : MountOf(serial, bus);
  if (!path) return;
  throw Failure(ExitCode::kFailed, "Camera " + Printable(serial) + " is mounted on " + Printable(*path) +
                                       " already; `fusermount3 -u` with this folder ends that mount.");
}

class Mount {
 public:
  Mount(Context& context, bool daemon)
      : context_(context),
        daemon_(daemon),
        chosen_(Choose(FindAttached(context.diversion), WantedSerial(context.call.Value("serial")))),
        serial_(chosen_.facts.serial) {
    CheckNotMounted(serial_, context.call.Value("virtual"));
    const auto& words = context.call.words;
    place_ = std::make_unique<Place>(words.empty() ? std::nullopt : std::optional(words.front()), serial_);
    keeper_ = std::make_unique<Keeper>(place_->Path(), place_->IsMade());
    files_ = std::make_unique<FileSystem>(
        context.call.Has("writable"),
        FileSystem::Events{[this] { Lose(); }, [this] { TellForwardOnly(); },
                           [this](const std::string& why) { TellNoDates(why); }, [this] { kernel_->Answer(); }});
    kernel_ = std::make_unique<Kernel>(*files_, SourceOf(serial_, context.call.Value("virtual")));
  }
  ~Mount() { End(); }
  Mount(const Mount&) = delete;
  Mount& operator=(const Mount&) = delete;

  ExitCode Run() {
    const Stop::WakeUp relay(context_.stop, [this] { ending_.Request(); });
    context_.stop.Check();
    OpenCamera();
    kernel_->Mount(place_->Path());
    kernelThread_ = std::thread([this] {
      kernel_->Serve();
      ending_.Request();
    });
    TellMounted();
    WatchCamera();
    End();
    return TellEnd();
  }

 private:
  void OpenCamera() {
    std::promise<void> opened;
    std::future<void> isOpen = opened.get_future();
    auto done = std::make_shared<std::promise<void>>();
    cameraDone_ = done->get_future().share();
    cameraThread_ = std::thread([this, done, opened = std::move(opened)]() mutable {
      ServeCamera(opened);
      done->set_value();
    });
    isOpen.get();
  }

  void ServeCamera(std::promise<void>& opened) {
    Context context(context_.call, context_.out, context_.reporter, ending_, context_.diversion);
    context.trace = context_.trace;
    context.holdersOf = context_.holdersOf;
    context.lineOf = context_.lineOf;
    bool isOpen = false;
    try {
      files_->Serve(context, chosen_, [&] {
        isOpen = true;
        opened.set_value();
      });
    } catch (const Stopped&) {
      if (!isOpen) opened.set_exception(std::current_exception());
    } catch (...) {
      if (!isOpen) opened.set_exception(std::current_exception());
    }
  }

  void WatchCamera() {
    Hotplug hotplug([this](const HotplugEvent& event) {
      if (event.kind == HotplugEvent::Kind::kLost && event.facts.serial == serial_) Lose();
    });
    try {
      hotplug.Run(ending_);
    } catch (const Stopped&) {
      // For one of three reasons, see TellEnd.
    }
  }

  // Any thread.
  void Lose() {
    lost_.store(true);
    files_->End(ENODEV);
    ending_.Request();
  }

  void End() {
    ending_.Request();
    files_->End(ENODEV);
    if (kernelThread_.joinable()) {
      // Lazily first: whoever has a file open gets the reason, not a broken connection.
      if (lost_.load() && UnmountLazily(place_->Path())) kernel_->WasUnmounted();
      kernel_->Leave(lost_.load() ? std::chrono::milliseconds(kLastWords) : 0ms);
      kernelThread_.join();
    }
    kernel_->Unmount();
    keeper_.reset();
    place_.reset();
    if (cameraThread_.joinable() && !hangs_) JoinCamera();
  }

  void JoinCamera() {
    // The supervisor ends a command that was stopped and hangs.
    if (context_.stop.Requested() || cameraDone_.wait_for(kPatience) == std::future_status::ready) {
      cameraThread_.join();
    } else {
      hangs_ = true;
    }
  }

  void TellMounted() {
    const std::string& path = place_->Path();
    path_ = path;
    context_.Event("mounted",
                   Json::Object().SetBytes("serial", serial_).SetBytes("path", path).Set("was_mounted", false),
                   "Mounted " + Name() + " on " + Printable(path) + "\n");
    if (daemon_) Detach();
  }

  void Detach() const {
    const base::FileDescriptor null(::open("/dev/null", O_RDWR | O_CLOEXEC));
    for (const int descriptor : {STDIN_FILENO, STDERR_FILENO, context_.diversion.Real()}) {
      if (descriptor >= 0) ::dup2(null.Get(), descriptor);
    }
    if (!context_.call.Has("virtual")) static_cast<void>(::chdir("/") == 0);
  }

  void TellForwardOnly() const {
    Note(Name() +
         " sends files from start to end only: a program that reads elsewhere waits until the file was read up to "
         "there, into a temporary file.");
  }

  void TellNoDates(const std::string& why) const {
    Note(why + " Dates are those of the catalogue, where it has them.");
  }

  void Note(const std::string& sentence) const {
    if (daemon_) {
      ::syslog(LOG_USER | LOG_NOTICE, "kelva-mount: %s", sentence.c_str());
    } else {
      context_.reporter.Note(sentence);
    }
  }

  ExitCode TellEnd() {
    const bool stopped = context_.stop.Requested() && !hangs_;
    const char* why = lost_.load() ? "unplugged" : stopped ? "stopped" : "unmounted";
    context_.Event("unmounted", Json::Object().SetBytes("serial", serial_).SetBytes("path", path_).Set("why", why), "");
    if (lost_.load()) {
      const Failure failure(ExitCode::kGone, Name() + " went away, so " + Printable(path_) +
                                                 " is not mounted any more; plug it in again.");
      if (!hangs_) throw failure;
      context_.reporter.Error(failure.what(), failure.Code());
      context_.Result(Json::Object(), "", failure.Code());
      EndProcess(failure.Code());
    }
    if (stopped) throw Stopped();
    context_.Result(Json::Object().SetBytes("serial", serial_).SetBytes("path", path_), "");
    if (hangs_) EndProcess(ExitCode::kDone);
    return ExitCode::kDone;
  }

  // Before anything goes away that the camera's thread uses, which hangs.
  [[noreturn]] void EndProcess(ExitCode code) {
    cameraThread_.detach();
    ::_exit(static_cast<int>(code));
  }

  std::string Name() const { return serial_.empty() ? "the camera" : "camera " + Printable(serial_); }

  Context& context_;
  const bool daemon_;
  const AttachedCamera chosen_;
  const std::string serial_;
  std::string path_;
  Stop ending_;
  std::atomic<bool> lost_ = false;
  bool hangs_ = false;
  std::unique_ptr<Place> place_;
  std::unique_ptr<Keeper> keeper_;
  std::unique_ptr<FileSystem> files_;
  std::unique_ptr<Kernel> kernel_;
  std::shared_future<void> cameraDone_;
  std::thread cameraThread_;
  std::thread kernelThread_;
};

ExitCode Run(Context& context, bool daemon) {
  context.Doing("mount the camera");
  if (context.soFar != nullptr) {
    context.soFar->Tell([] { return SoFar::Done{"the camera is not mounted any more", Json::Object()}; });
  }
  return Mount(context, daemon).Run();
}

}  // namespace

ExitCode MountHere(Context& context) {
  return Run(context, false);
}

ExitCode MountAsDaemon(Context& context) {
  return Run(context, true);
}

}  // namespace apps

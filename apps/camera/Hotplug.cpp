// Watches cameras come and go, for `kelva watch` and `kelva wait`.

#include "apps/camera/Hotplug.h"

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

namespace apps {
namespace {

/// Makes this thread's run loop handle a source, now or as soon as it runs. (CFRunLoopStop is lost while no run is in
/// progress.)
class Alarm {
 public:
  Alarm() { CFRunLoopAddSource(loop_, source_, kCFRunLoopDefaultMode); }
  ~Alarm() {
    CFRunLoopSourceInvalidate(source_);
    CFRelease(source_);
  }
  Alarm(const Alarm&) = delete;
  Alarm& operator=(const Alarm&) = delete;

  /// Any thread.
  void Ring() const {
    CFRunLoopSourceSignal(source_);
    CFRunLoopWakeUp(loop_);
  }

 private:
  static CFRunLoopSourceRef Make() {
    CFRunLoopSourceContext context{};
    context.perform = [](void*) {};
    return CFRunLoopSourceCreate(kCFAllocatorDefault, 0, &context);
  }

  const CFRunLoopRef loop_ = CFRunLoopGetCurrent();
  const CFRunLoopSourceRef source_ = Make();
};

}  // namespace

std::string_view HotplugEvent::Word() const {
  return kind == Kind::kAttached ? "attached" : kind == Kind::kLost ? "lost" : "bad";
}

Json HotplugEvent::Members() const {
  Json members = Json::Object();
  if (kind != Kind::kBad) {
    members.SetBytes("serial", facts.serial).SetBytes("product", facts.product).SetBytes("revision", facts.revision);
  }
  return members.Set("present", present);
}

// Called from C frames of the run loop, which no exception may cross.
void Hotplug::Report(const HotplugEvent& event) noexcept {
  if (error_ || finished_) return;
  try {
    handler_(event);
  } catch (...) {
    error_ = std::current_exception();
  }
}

void Hotplug::OnAttach(boost::shared_ptr<Camera> camera, void* self) {
  auto& hotplug = *static_cast<Hotplug*>(self);
  try {
    hotplug.watched_.push_back({&hotplug, FactsOf(*camera), camera, {}, {}});
    camera->ListenForCameraLost(OnLost, &hotplug.watched_.back());
  } catch (...) {
    hotplug.error_ = std::current_exception();
  }
  hotplug.Report({HotplugEvent::Kind::kAttached, hotplug.present_, hotplug.watched_.back().facts});
}

void Hotplug::OnBad(void* self) {
  auto& hotplug = *static_cast<Hotplug*>(self);
  hotplug.Report({HotplugEvent::Kind::kBad, hotplug.present_, {}});
}

void Hotplug::OnLost(void* watched) {
  const auto& lost = *static_cast<Watched*>(watched);
  lost.owner->Report({HotplugEvent::Kind::kLost, false, lost.facts});
}

// Not in OnLost: WasDisconnected() becomes true only after that callback.
void Hotplug::ForgetLost() {
  watched_.remove_if([](const Watched& watched) { return watched.camera->WasDisconnected(); });
}

void Hotplug::Repeat(std::chrono::milliseconds pause, MakeErrand make) {
  pause_ = pause;
  makeErrand_ = std::move(make);
}

void Hotplug::Every(std::chrono::milliseconds pause, std::function<void()> look) {
  pause_ = pause;
  look_ = std::move(look);
}

void Hotplug::Look() {
  using Clock = std::chrono::steady_clock;
  if (finished_ || Clock::now() < nextLook_) return;
  look_();
  nextLook_ = Clock::now() + pause_;
}

// Not in the callbacks, because an errand may wait for its camera. The loop also wakes up for other sources: the errand's
// own session is news on a bus.
void Hotplug::RunErrands() {
  using Clock = std::chrono::steady_clock;
  for (Watched& watched : watched_) {
    if (finished_ || Clock::now() < watched.due) continue;
    if (!watched.errand) watched.errand = makeErrand_(watched.facts, watched.camera);
    watched.errand();
    watched.due = Clock::now() + pause_;
  }
}

void Hotplug::Run(const Stop& stop) {
  Camera::ListenForCameraAttach(OnAttach, this, false);
  Camera::ListenForBadCameraAttach(OnBad, this);
  present_ = false;
  const Alarm alarm;
  const Stop::WakeUp wakeUp(stop, [&alarm] { alarm.Ring(); });
  constexpr CFTimeInterval kForEver = 1e10;
  const CFTimeInterval pause = makeErrand_ || look_ ? std::chrono::duration<double>(pause_).count() : kForEver;
  while (!error_ && !finished_) {
    stop.Check();
    if (makeErrand_) RunErrands();
    if (look_) Look();
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, pause, true);
    ForgetLost();
  }
  if (error_) std::rethrow_exception(error_);
}

}  // namespace apps

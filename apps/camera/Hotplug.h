#ifndef KELVA_APPS_CAMERA_HOTPLUG_H_
#define KELVA_APPS_CAMERA_HOTPLUG_H_

#include <boost/shared_ptr.hpp>
#include <chrono>
#include <exception>
#include <functional>
#include <list>
#include <string_view>

#include "apps/camera/Registry.h"
#include "apps/commandline/Json.h"
#include "apps/commandline/Stop.h"
#include "src/wifi/Camera.h"

namespace apps {

/// What happened to a camera.
struct HotplugEvent {
  enum class Kind { kAttached, kLost, kBad } kind;
  bool present;          ///< true for a camera that was attached before the watch began
  RegistryCamera facts;  ///< empty for a bad camera: the system does not tell which camera it is

  /// "attached", "lost", "bad".
  std::string_view Word() const;
  /// What is said of it in JSON.
  Json Members() const;
};

/// Watches cameras come and go on the thread that runs it. One per process.
class Hotplug {
 public:
  using Handler = std::function<void(const HotplugEvent&)>;

  /// The handler may throw: Run then handles no further event and throws that exception.
  explicit Hotplug(Handler handler) : handler_(std::move(handler)) {}
  Hotplug(const Hotplug&) = delete;
  Hotplug& operator=(const Hotplug&) = delete;

  /// What is done again and again with one camera while it is attached.
  using Errand = std::function<void()>;
  using MakeErrand = std::function<Errand(const RegistryCamera& facts, const boost::shared_ptr<Camera>& camera)>;
  /// Call before Run: `make` is called for each camera, and what it returns when `pause` has passed since it ended
  /// last. Both may throw, as the handler may. The errand, and with it all that it keeps, goes with its camera.
  void Repeat(std::chrono::milliseconds pause, MakeErrand make);

  /// Call before Run: what is done first when the cameras that are there have been reported, and then each time that `pause` has
  /// passed. It may throw, as the handler may. Not together with Repeat.
  void Every(std::chrono::milliseconds pause, std::function<void()> look);

  /// Reports the cameras that are there, then each change, until `stop` is requested (throws Stopped) or Finish is
  /// called. Throws CameraError when the system refuses to watch.
  void Run(const Stop& stop);
  /// Makes Run return; from within the handler.
  void Finish() { finished_ = true; }

 private:
  struct Watched {
    Hotplug* owner;
    RegistryCamera facts;
    boost::shared_ptr<Camera> camera;
    Errand errand;
    std::chrono::steady_clock::time_point due;  ///< the errand's next turn
  };

  static void OnAttach(boost::shared_ptr<Camera> camera, void* self);
  static void OnBad(void* self);
  static void OnLost(void* watched);
  void Report(const HotplugEvent& event) noexcept;
  void ForgetLost();
  void RunErrands();
  void Look();

  Handler handler_;
  std::chrono::milliseconds pause_{0};
  MakeErrand makeErrand_;
  std::function<void()> look_;
  std::chrono::steady_clock::time_point nextLook_;
  std::list<Watched> watched_;
  bool present_ = true;
  bool finished_ = false;
  std::exception_ptr error_;
};

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_HOTPLUG_H_

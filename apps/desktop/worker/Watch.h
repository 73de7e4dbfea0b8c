#ifndef KELVA_APPS_DESKTOP_WORKER_WATCH_H_
#define KELVA_APPS_DESKTOP_WORKER_WATCH_H_

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "apps/camera/Hotplug.h"
#include "apps/commandline/Context.h"
#include "apps/doctor/Finding.h"

namespace apps {

/// Tells the window which cameras come and go, and what keeps one from being used. One per process.
class Watch {
 public:
  /// Looks for obstacles with `look`; for tests another than the machine.
  using Look = std::function<std::vector<doctor::Finding>()>;
  explicit Watch(Context& context);
  Watch(Context& context, Look look);

  /// Until `context.stop` is requested: throws Stopped.
  void Run();

 private:
  void Report(const HotplugEvent& event);
  void LookForTrouble();

  Context& context_;
  const Look look_;
  Hotplug hotplug_;
  std::optional<std::string> told_;  // the findings that were given last
};

}  // namespace apps

#endif  // KELVA_APPS_DESKTOP_WORKER_WATCH_H_

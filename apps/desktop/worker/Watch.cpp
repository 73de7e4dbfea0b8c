// Watches cameras for the window.
#include "apps/desktop/worker/Watch.h"

#include <chrono>
#include <optional>
#include <string>
#include <utility>

#include "apps/camera/Hotplug.h"

namespace apps {

void WatchCameras(Context& context, const std::function<std::vector<doctor::Finding>()>& look) {
  // What a camera that cannot be used changes, no event of the library tells.
  constexpr std::chrono::seconds kPause{1};
  Hotplug hotplug([&](const HotplugEvent& event) { context.Event(event.Word(), event.Members(), ""); });
  std::optional<std::string> told;
  hotplug.Every(kPause, [&] {
    Json findings = doctor::InJson(look());
    std::string text = findings.Text();
    if (told != text) context.Event("trouble", Json::Object().Set("findings", std::move(findings)), "");
    const bool isFirst = !std::exchange(told, std::move(text));
    if (isFirst) context.Event("ready", Json::Object(), "");
  });
  hotplug.Run(context.stop);
}

}  // namespace apps

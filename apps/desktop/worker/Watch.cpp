// Watches cameras for the window.
#include "apps/desktop/worker/Watch.h"

#include <chrono>
#include <string_view>
#include <utility>

#include "apps/tool/CameraSource.h"

namespace apps {
namespace {

using Kind = HotplugEvent::Kind;

std::string_view WordFor(Kind kind) {
  return kind == Kind::kAttached ? "attached" : kind == Kind::kLost ? "lost" : "bad";
}

Json InJson(const std::vector<doctor::Finding>& findings) {
  Json list = Json::Array();
  for (const doctor::Finding& finding : findings) {
    Json members = Json::Object().Set("condition", doctor::WordOf(finding.condition));
    members.SetBytes("serial", finding.serial).SetBytes("sentence", finding.sentence);
    list.Push(members.SetBytes("command", finding.command).SetBytes("advice", finding.advice));
  }
  return list;
}

}  // namespace

Watch::Watch(Context& context)
    : Watch(context, [socket = context.call.Value("virtual")] { return ObstaclesToCameras(socket); }) {}

Watch::Watch(Context& context, Look look)
    : context_(context), look_(std::move(look)), hotplug_([this](const HotplugEvent& event) { Report(event); }) {}

void Watch::Run() {
  // What a camera that cannot be used changes, no event of the library tells.
  constexpr std::chrono::seconds kPause{1};
  hotplug_.Every(kPause, [this] { LookForTrouble(); });
  hotplug_.Run(context_.stop);
}

void Watch::Report(const HotplugEvent& event) {
  Json members = Json::Object();
  if (event.kind != Kind::kBad) {
    members.SetBytes("serial", event.facts.serial).SetBytes("product", event.facts.product);
    members.SetBytes("revision", event.facts.revision);
  }
  context_.Event(WordFor(event.kind), std::move(members.Set("present", event.present)), "");
}

void Watch::LookForTrouble() {
  Json findings = InJson(look_());
  const bool isFirst = !told_.has_value();
  std::string text = findings.Text();
  if (told_ != text) context_.Event("trouble", Json::Object().Set("findings", std::move(findings)), "");
  told_ = std::move(text);
  if (isFirst) context_.Event("ready", Json::Object(), "");
}

}  // namespace apps

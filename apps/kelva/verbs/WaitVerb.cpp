// The verb wait.
#include <string>

#include "apps/camera/Attached.h"
#include "apps/camera/Hotplug.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Printable.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

bool IsAttached(Context& context, const std::optional<std::string>& serial) {
  for (const AttachedCamera& camera : FindAttached(context.diversion)) {
    if (IsWanted(camera.facts, serial)) return true;
  }
  return false;
}

ExitCode RunWait(Context& context) {
  const auto serial = WantedSerial(context.call.Value("serial"));
  const bool forLoss = context.call.Has("gone");
  context.Doing("wait for a camera");
  // A longer time-out helps a camera that is slow, and not one that is not there.
  if (context.soFar != nullptr) {
    context.soFar->Tell([] { return SoFar::Done{"no camera came or went that it waits for", Json::Object()}; });
  }
  RegistryCamera seen;
  if (serial != kWithoutSerial) seen.serial = serial.value_or("");
  Hotplug hotplug([&](const HotplugEvent& event) {
    if (event.kind == HotplugEvent::Kind::kBad || !IsWanted(event.facts, serial)) return;
    const bool attached = event.kind == HotplugEvent::Kind::kAttached;
    if (attached == forLoss) return;
    seen = event.facts;
    hotplug.Finish();
  });
  if (!forLoss || IsAttached(context, serial)) hotplug.Run(context.stop);
  return context.Result(Json::Object().SetBytes("serial", seen.serial).Set("attached", !forLoss),
                        forLoss ? "" : Printable(SerialWord(seen)) + "\n");
}

constexpr Option kOptions[] = {{"gone", 'g', "", "Wait until the camera is no longer attached."}};
constexpr Example kExamples[] = {
    {"kelva wait --timeout 60 && kelva sync ~/Pictures", "Fetch new pictures as soon as a camera is there."},
    {"kelva wait --gone -s K1-0042", "Wait until this camera has been unplugged."},
};

constexpr Verb kVerbs[] = {
    {.name = "wait",
     .summary = "Wait until a camera is attached",
     .options = kOptions,
     .details =
         R"(Returns at once if a camera is already attached, and prints its serial number, or - for a camera
that has none. Without --serial any camera will do. If --timeout passes before a camera appears, the exit status is 8.)",
     .json = "serial: of the camera\nattached: false with --gone",
     .examples = kExamples,
     .run = RunWait}};

}  // namespace

std::span<const Verb> WaitVerbs() {
  return kVerbs;
}

}  // namespace apps

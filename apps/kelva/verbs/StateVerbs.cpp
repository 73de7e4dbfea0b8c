// The verbs ready, battery, done-count and reboot.
#include <string>
#include <thread>
#include <utility>

#include "apps/camera/Battery.h"
#include "apps/camera/LastingSession.h"
#include "apps/kelva/verbs/Number.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

using namespace std::chrono_literals;

ExitCode RunReady(Context& context) {
  const Session camera(context, "ask whether the camera is ready");
  const bool wait = context.call.Has("wait");
  bool ready = camera->IsReady();
  while (wait && !ready) {
    context.stop.Check();
    std::this_thread::sleep_for(200ms);
    ready = camera->IsReady();
  }
  const ExitCode code = ready ? ExitCode::kDone : ExitCode::kFailed;
  return context.Result(CameraResult(camera).Set("ready", ready), ready ? "ready\n" : "not ready\n", code);
}

ExitCode RunBattery(Context& context) {
  const Session camera(context, "read the battery level");
  const float level = camera->BatteryLevel();
  const Json number = IsReadableLevel(level) ? NumberOf(level) : Json();
  return context.Result(CameraResult(camera).Set("level", number).Set("bits", LevelBits(level)),
                        LevelText(level) + "\n");
}

ExitCode RunDoneCount(Context& context) {
  const Session camera(context, "read the count of completed commands");
  const int count = camera->GetDoneCmdCount();
  return context.Result(CameraResult(camera).Set("count", count), std::to_string(count) + "\n");
}

ExitCode RunReboot(Context& context) {
  context.Doing("restart the camera");
  LastingSession camera(context);
  const bool wait = context.call.Has("wait");
  const int commands = wait ? camera.Device().GetDoneCmdCount() : 0;
  Json members = CameraResult(camera.Current());
  camera.Device().Reboot();
  if (wait) {
    camera.WaitUntilGone(commands);
    camera.WaitUntilReady();
  }
  context.Result(std::move(members.Set("back", wait)), "");
  context.reporter.Note(wait ? "The camera has restarted and is ready."
                             : "The camera was told to restart; `kelva reboot --wait` also waits until it is back.");
  return ExitCode::kDone;
}

constexpr Option kReadyOptions[] = {{"wait", 'w', "", "Ask five times a second until it is ready."}};
constexpr Option kRebootOptions[] = {{"wait", 'w', "", "Wait until the same camera is back and ready."}};
constexpr Example kRebootExamples[] = {{"kelva reboot --wait --timeout 60", "Restart it, and go on when it is back."}};
constexpr Example kReadyExamples[] = {
    {"kelva ready && kelva capture", "Take a picture if the camera is ready."},
    {"kelva ready --wait --timeout 30", "Wait half a minute for it."},
};
constexpr Example kBatteryExamples[] = {{"kelva battery -s K1-0042", "The battery of one of several cameras."}};
constexpr Example kDoneCountExamples[] = {
    {"kelva done-count; kelva capture; kelva done-count", "See how many commands a picture counts for."}};

constexpr Verb kVerbs[] = {
    {"ready", "Ask whether the camera is ready", kNoArguments, kReadyOptions,
     "The exit status is 0 if it is ready and 1 if not, so a script need not read the answer.", "ready: true or false",
     kReadyExamples, RunReady},
    {"battery", "Show the battery level", kNoArguments, kNoOptions,
     "The number is in the camera's own unit, which differs between models. If it cannot be a level, its 32 bits are "
     "shown in "
     "hexadecimal.",
     "level: number; null if it cannot be a level\nbits: its 32 bits, 0x3f400000 for 0.75", kBatteryExamples,
     RunBattery},
    {"done-count", "Show how many commands the camera has completed", kNoArguments, kNoOptions,
     "Compare the counts before and after a command to see whether the camera has finished it.", "count: whole number",
     kDoneCountExamples, RunDoneCount},
    {"reboot", "Restart the camera", kNoArguments, kRebootOptions,
     R"(The camera disappears and comes back; until then commands fail with exit status 5 or 3. With --wait the
command ends when the camera with the same serial number is back and ready. It ends with exit status 8 if --timeout
passes first, and with 1 if the camera does not restart at all.)",
     "back: true with --wait", kRebootExamples, RunReboot},
};

}  // namespace

std::span<const Verb> StateVerbs() {
  return kVerbs;
}

}  // namespace apps

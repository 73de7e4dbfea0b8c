// The verb watch.
#include <unistd.h>

#include <string>

#include "apps/camera/Attached.h"
#include "apps/camera/Hotplug.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Printable.h"
#include "apps/kelva/verbs/Hook.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

using Kind = HotplugEvent::Kind;

std::string_view WordFor(Kind kind) {
  return kind == Kind::kAttached ? "attached" : kind == Kind::kLost ? "lost" : "bad";
}

Json Members(const HotplugEvent& event) {
  Json members = Json::Object();
  if (event.kind != Kind::kBad) {
    members.SetBytes("serial", event.facts.serial).SetBytes("product", event.facts.product);
    members.SetBytes("revision", event.facts.revision);
  }
  return members.Set("present", event.present);
}

std::string Line(const HotplugEvent& event) {
  if (event.kind == Kind::kBad) {
    return "bad        a camera that the system took for a CD drive; see `kelva doctor`\n";
  }
  const std::string name = event.facts.serial.empty() ? "-" : Printable(event.facts.serial);
  const std::string word = event.kind == Kind::kLost ? "lost       " : event.present ? "present    " : "attached   ";
  return word + name + "  " + Printable(event.facts.product) + "\n";
}

// Whether the event is about a camera that was asked for.
bool IsWanted(const HotplugEvent& event, const std::optional<std::string>& serial) {
  return !serial || event.kind == Kind::kBad || event.facts.serial == *serial;
}

void RunHook(Context& context, const std::string& command, const HotplugEvent& event, bool& failed) {
  const std::string outcome =
      RunCommand(command, {{"KELVA_EVENT", std::string(WordFor(event.kind))}, {"KELVA_SERIAL", event.facts.serial}},
                 context.Json() ? STDERR_FILENO : context.diversion.Real());
  if (outcome.empty()) return;
  failed = true;
  context.reporter.Error("The command for \"" + std::string(WordFor(event.kind)) + "\" of camera " +
                             Printable(event.facts.serial) + " " + outcome + ".",
                         ExitCode::kPartial);
}

ExitCode RunWatch(Context& context) {
  context.Doing("watch for cameras");
  const auto serial = WantedSerial(context.call.Value("serial"));
  const auto command = context.call.Value("exec");
  const long long most = ParseNumber(context.call.Value("count").value_or("0"), "a number of events", 0, 1'000'000'000);
  long long seen = 0;
  bool hookFailed = false;
  Hotplug hotplug([&](const HotplugEvent& event) {
    if (!IsWanted(event, serial)) return;
    context.Event(WordFor(event.kind), Members(event), Line(event));
    if (command && !event.present) RunHook(context, *command, event, hookFailed);
    if (most != 0 && ++seen == most) hotplug.Finish();
  });
  hotplug.Run(context.stop);
  const ExitCode code = hookFailed ? ExitCode::kPartial : ExitCode::kDone;
  return context.Result(Json::Object().Set("events", seen), "", code);
}

constexpr Option kOptions[] = {
    {"exec", 'x', "COMMAND",
     R"(Run this shell command at each change, with KELVA_EVENT (attached, lost, bad) and KELVA_SERIAL set. Later
events wait until it ends.)"},
    {"count", 'n', "N", "End after N events; cameras that are already attached count."},
};
constexpr Example kExamples[] = {
    {"kelva watch", "Show cameras come and go until Ctrl-C."},
    {"kelva watch --exec 'test $KELVA_EVENT = attached && kelva sync ~/Pictures'", "Fetch new pictures at each plug."},
    {"kelva watch --json | while read -r event; do ...; done", "One JSON object for each event."},
};

constexpr Verb kVerbs[] = {
    {"watch", "Report cameras as they come and go", kNoArguments, kOptions,
     R"(Prints the cameras that are attached ("present"), then each change: "attached", "lost", and "bad" for a
camera that the system took for a CD drive. It uses no processor time while nothing happens. It ends with Ctrl-C (exit
status 130), after --timeout (8) or after --count events (0, or 6 if a command of --exec failed).

Commands of --exec run for changes only, not for cameras that were attached before. With --json, whatever they print
goes to standard error.)",
     R"(event: attached, lost or bad
serial: of the camera, empty if it has none; not with bad
product: of the camera; not with bad
revision: of the camera; not with bad
present: true for a camera that was attached when the watch began
events: how many events there were; at the end, with --count)",
     kExamples, RunWatch}};

}  // namespace

std::span<const Verb> WatchVerbs() {
  return kVerbs;
}

}  // namespace apps

// The verb watch.
#include <unistd.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "apps/camera/Attached.h"
#include "apps/camera/Hotplug.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Failure.h"
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

constexpr std::array<std::string_view, 3> kEvents = {"attached", "lost", "bad"};

// The events of a list, "attached,lost". Throws Failure for a word that is no event.
std::vector<std::string> EventsIn(std::string_view list) {
  std::vector<std::string> events;
  while (true) {
    const std::size_t comma = std::min(list.find(','), list.size());
    const std::string_view word = list.substr(0, comma);
    if (std::find(kEvents.begin(), kEvents.end(), word) == kEvents.end()) {
      throw Failure(ExitCode::kUsage, "--on takes events, separated by commas: attached, lost, bad; \"" +
                                          Printable(word) + "\" is another word.");
    }
    events.emplace_back(word);
    if (comma == list.size()) return events;
    list.remove_prefix(comma + 1);
  }
}

/// The command of --exec, and the events for which it runs.
class Command {
 public:
  explicit Command(Context& context) : context_(context), text_(context.call.Value("exec")) {
    const auto on = context.call.Value("on");
    if (on && !text_) throw Failure(ExitCode::kUsage, "--on goes with --exec; it says when the command runs.");
    events_ = EventsIn(on.value_or("attached"));
  }

  void RunFor(std::string_view event, const RegistryCamera& camera) {
    if (!text_ || std::find(events_.begin(), events_.end(), event) == events_.end()) return;
    const std::string outcome =
        RunCommand(*text_, {{"KELVA_EVENT", std::string(event)}, {"KELVA_SERIAL", camera.serial}},
                   context_.Json() ? STDERR_FILENO : context_.diversion.Real());
    if (outcome.empty()) return;
    failed_ = true;
    const std::string whose = camera.serial.empty() ? "" : " of camera " + Printable(camera.serial);
    context_.reporter.Error("The command for \"" + std::string(event) + "\"" + whose + " " + outcome + ".",
                            ExitCode::kPartial);
  }
  bool HasFailed() const { return failed_; }

 private:
  Context& context_;
  const std::optional<std::string> text_;
  std::vector<std::string> events_;
  bool failed_ = false;
};

ExitCode RunWatch(Context& context) {
  context.Doing("watch for cameras");
  const auto serial = WantedSerial(context.call.Value("serial"));
  Command command(context);
  const long long most = ParseNumber(context.call.Value("count").value_or("0"), "a number of events", 0, 1'000'000'000);
  long long seen = 0;
  Hotplug hotplug([&](const HotplugEvent& event) {
    if (!IsWanted(event, serial)) return;
    context.Event(WordFor(event.kind), Members(event), Line(event));
    if (!event.present) command.RunFor(WordFor(event.kind), event.facts);
    if (most != 0 && ++seen == most) hotplug.Finish();
  });
  hotplug.Run(context.stop);
  const ExitCode code = command.HasFailed() ? ExitCode::kPartial : ExitCode::kDone;
  return context.Result(Json::Object().Set("events", seen), "", code);
}

constexpr Option kOptions[] = {
    {"exec", 'x', "COMMAND",
     "Run this shell command when a camera is attached, with KELVA_EVENT and KELVA_SERIAL set. Later events wait until "
     "it "
     "ends."},
    {.name = "on",
     .letter = 0,
     .value = "EVENTS",
     .help = "Run the command at these events instead, separated by commas: attached, lost, bad.",
     .offer = Offer::kWords,
     .words = "attached lost bad attached,lost"},
    {"count", 'n', "N", "End after N events; cameras that are already attached count."},
};
constexpr Example kExamples[] = {
    {"kelva watch", "Show cameras come and go until Ctrl-C."},
    {"kelva watch --exec 'kelva sync ~/Pictures'", "Fetch new pictures at each plug."},
    {"kelva watch --on attached,lost --exec 'logger \"camera $KELVA_SERIAL $KELVA_EVENT\"'", "Log plugs and unplugs."},
    {"kelva watch --json | while read -r event; do ...; done", "One JSON object for each event."},
};

constexpr Verb kVerbs[] = {
    {"watch", "Report cameras as they come and go", kNoArguments, kOptions,
     R"(Prints the cameras that are attached ("present"), then each change: "attached", "lost", and "bad" for a
camera that the system took for a CD drive. It uses no processor time while nothing happens. It ends with Ctrl-C (exit
status 130), after --timeout (8) or after --count events (0, or 6 if a command of --exec failed).

Commands of --exec run for changes only, not for cameras that were attached before. KELVA_SERIAL makes a `kelva` in the
command use the camera of the event; it is empty at "bad". With --json, whatever the command prints goes to standard
error.)",
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

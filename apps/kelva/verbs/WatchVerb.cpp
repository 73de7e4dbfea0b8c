// The verb watch.
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "apps/camera/Attached.h"
#include "apps/camera/Catalogue.h"
#include "apps/camera/Explain.h"
#include "apps/camera/Hotplug.h"
#include "apps/camera/NewPictures.h"
#include "apps/camera/Picture.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/kelva/verbs/Hook.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

// Enough for the turn of another program that gives the camera up for others.
constexpr std::chrono::milliseconds kATurn{400};

using Kind = HotplugEvent::Kind;

std::string NameOf(const RegistryCamera& camera) {
  return Printable(SerialWord(camera));
}

std::string Line(const HotplugEvent& event) {
  if (event.kind == Kind::kBad) {
    return "bad        a camera that the system took for a CD drive; see `kelva doctor`\n";
  }
  const std::string word = event.kind == Kind::kLost ? "lost       " : event.present ? "present    " : "attached   ";
  return word + NameOf(event.facts) + "  " + Printable(event.facts.product) + "\n";
}

// Whether the event is about a camera that was asked for.
bool IsWanted(const HotplugEvent& event, const std::optional<std::string>& serial) {
  return event.kind == Kind::kBad || IsWanted(event.facts, serial);
}

constexpr std::array<std::string_view, 4> kEvents = {"attached", "lost", "bad", "picture"};

// The events of a list, "attached,lost". Throws Failure for a word that is no event.
std::vector<std::string> EventsIn(std::string_view list) {
  std::vector<std::string> events;
  while (true) {
    const std::size_t comma = std::min(list.find(','), list.size());
    const std::string_view word = list.substr(0, comma);
    if (std::find(kEvents.begin(), kEvents.end(), word) == kEvents.end()) {
      throw Failure(ExitCode::kUsage, "--on takes events, separated by commas: attached, lost, bad, picture; \"" +
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
    events_ = EventsIn(on.value_or(context.call.Has("pictures") ? "picture" : "attached"));
    if (on && !context.call.Has("pictures") && IsOn("picture")) {
      throw Failure(ExitCode::kUsage, "--on picture goes with --pictures, which looks for new ones.");
    }
  }

  // `picture` is the folder and name of a picture, or empty.
  void RunFor(std::string_view event, const RegistryCamera& camera, const std::string& picture) {
    if (!text_ || !IsOn(event)) return;
    const std::string serial = event == "bad" ? "" : SerialWord(camera);
    std::vector<std::pair<std::string, std::string>> variables = {
        {"KELVA_EVENT", std::string(event)}, {"KELVA_SERIAL", serial}, {"KELVA_PICTURE", picture}};
    // The command may go to another folder.
    const auto bus = context_.call.Value("virtual");
    if (bus) variables.emplace_back("KELVA_VIRTUAL", std::filesystem::absolute(*bus).string());
    const std::string outcome =
        RunCommand(*text_, variables, context_.Json() ? STDERR_FILENO : context_.diversion.Real());
    if (outcome.empty()) return;
    failed_ = true;
    const std::string whose = camera.serial.empty() ? "" : " of camera " + Printable(camera.serial);
    context_.reporter.Error("The command for \"" + std::string(event) + "\"" + whose + " " + outcome + ".",
                            ExitCode::kPartial);
  }
  bool HasFailed() const { return failed_; }

 private:
  bool IsOn(std::string_view event) const { return std::find(events_.begin(), events_.end(), event) != events_.end(); }

  Context& context_;
  const std::optional<std::string> text_;
  std::vector<std::string> events_;
  bool failed_ = false;
};

class Watch {
 public:
  explicit Watch(Context& context)
      : context_(context),
        serial_(WantedSerial(context.call.Value("serial"))),
        most_(ParseNumber(context.call.Value("count").value_or("0"), "a number of events", 0, 1'000'000'000)),
        command_(context),
        hotplug_([this](const HotplugEvent& event) { Report(event); }) {
    if (!context.call.Has("pictures")) return;
    constexpr std::chrono::seconds kPause{2};
    hotplug_.Repeat(kPause, [this](const RegistryCamera& facts, const boost::shared_ptr<Camera>& camera) {
      return ErrandFor({facts, camera});
    });
  }

  ExitCode Run() {
    hotplug_.Run(context_.stop);
    const ExitCode code = command_.HasFailed() ? ExitCode::kPartial : ExitCode::kDone;
    return context_.Result(Json::Object().Set("events", seen_), "", code);
  }

 private:
  void Report(const HotplugEvent& event) {
    if (!IsWanted(event, serial_)) return;
    context_.Event(event.Word(), event.Members(), Line(event));
    if (!event.present) command_.RunFor(event.Word(), event.facts, "");
    Count();
  }

  void Count() {
    if (++seen_ == most_) hotplug_.Finish();
  }

  // Looks for new pictures of one camera.
  Hotplug::Errand ErrandFor(const AttachedCamera& camera) {
    if (!IsWanted(camera.facts, serial_)) return [] {};
    return [this, camera, pictures = NewPictures(), complained = false]() mutable {
      try {
        // Ended before the command runs, which may use the camera.
        for (const DcfObj& picture : LookAt(camera, pictures)) Report(camera.facts, picture);
      } catch (const std::exception& error) {
        Complain(Explain(error, context_), complained);
      }
    };
  }

  // Whoever keeps the camera longer than a turn is asked about the next time; cameras come and go meanwhile.
  std::vector<DcfObj> LookAt(const AttachedCamera& camera, NewPictures& pictures) {
    const Session session(context_, camera, std::min(WaitBusy(context_), kATurn));
    context_.Doing("read the picture catalogue");
    return pictures.Look(*session);
  }

  void Report(const RegistryCamera& camera, const DcfObj& picture) {
    if (most_ != 0 && seen_ >= most_) return;
    Json members = Json::Object().SetBytes("serial", camera.serial);
    context_.Event("picture", std::move(members).Merge(PictureMembers(picture)),
                   "picture    " + NameOf(camera) + "  " + PictureName(picture) + "  " + TypeList(picture) + "\n");
    command_.RunFor("picture", camera, PictureFolder(picture) + "/" + PictureStem(picture));
    Count();
  }

  // A camera that another program holds, or that is going, is asked again later. Anything else is said once.
  void Complain(const Outcome& outcome, bool& complained) {
    if (outcome.code == ExitCode::kBusy || outcome.code == ExitCode::kGone || complained) return;
    context_.reporter.Error(outcome.sentence, outcome.code);
    complained = true;
  }

  Context& context_;
  const std::optional<std::string> serial_;
  const long long most_;  // 0 for any number
  long long seen_ = 0;
  Command command_;
  Hotplug hotplug_;
};

ExitCode RunWatch(Context& context) {
  context.Doing("watch for cameras");
  if (context.soFar != nullptr) {
    context.soFar->Tell([] { return SoFar::Done{"the watch is over", Json::Object()}; });
  }
  return Watch(context).Run();
}

constexpr Option kOptions[] = {
    {"exec", 'x', "COMMAND",
     "Run this shell command when a camera is attached, with KELVA_EVENT and KELVA_SERIAL set. Later events wait until "
     "it "
     "ends."},
    {.name = "on",
     .letter = 0,
     .value = "EVENTS",
     .help = "Run the command at these events instead, separated by commas: attached, lost, bad, picture.",
     .offer = Offer::kWords,
     .words = "attached lost bad picture"},
    {"pictures", 'p', "", "Also report each new picture in the catalogue of an attached camera."},
    {"count", 'n', "N", "End after N events; cameras that are already attached count."},
};
constexpr Example kExamples[] = {
    {"kelva watch", "Show cameras come and go until Ctrl-C."},
    {"kelva watch --exec 'kelva sync ~/Pictures'", "Fetch new pictures at each plug."},
    {"kelva watch --on attached,lost --exec 'logger \"camera $KELVA_SERIAL $KELVA_EVENT\"'", "Log plugs and unplugs."},
    {"kelva watch --pictures --exec 'kelva sync ~/Pictures'", "Fetch each picture soon after it was taken."},
    {"kelva watch --json | while read -r event; do ...; done", "One JSON object for each event."},
};

constexpr Verb kVerbs[] = {
    {.name = "watch",
     .summary = "Report cameras as they come and go",
     .options = kOptions,
     .details =
         R"(Prints the cameras that are attached ("present"), then each change: "attached", "lost", and "bad" for a
camera that the system took for a CD drive. Without --pictures it uses no processor time while nothing happens. It ends with Ctrl-C (exit
status 130), after --timeout (8) or after --count events (0, or 6 if a command of --exec failed).

Commands of --exec run for changes only, not for cameras that were attached before. They find the event in KELVA_EVENT,
the camera's serial number in KELVA_SERIAL (- if it has none, empty at "bad") and the name of a new picture, 100ABCDE/IMG_0001, in
KELVA_PICTURE. A `kelva` in the command uses that camera, also on a virtual bus, which KELVA_VIRTUAL then names. With --json, whatever the command prints goes to standard error.

With --pictures the catalogue of each camera is read every two seconds, unless another program holds the camera then, and
each picture that has appeared since is reported as "picture".)",
     .json = R"(event: attached, lost, bad or picture
serial: of the camera, empty if it has none; not with bad
product: of the camera; with attached and lost
revision: of the camera; with attached and lost
present: true for a camera that was attached when the watch began; not with picture
folder, name and the rest: of the picture, as `kelva pictures` gives them; with picture
events: how many events there were; at the end, with --count)",
     .examples = kExamples,
     .run = RunWatch}};

}  // namespace

std::span<const Verb> WatchVerbs() {
  return kVerbs;
}

}  // namespace apps

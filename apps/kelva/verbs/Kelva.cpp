// The tool as the command line's machinery sees it: its options, its manual page's description and all its verbs.
#include <vector>

#include "apps/camera/Attached.h"
#include "apps/camera/Turns.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

constexpr Option kOptions[] = {
    kSerialOption,
    kVirtualOption,
    kJsonOption,
    kQuietOption,
    kVerboseOption,
    {"trace", 0, "FILE", "Write each exchange with the camera into this file, or add it to a trace that is there.",
     Offer::kFile},
    {"trace-private", 0, "", "In the trace, put stand-ins in place of serial numbers and network names."},
    kWaitBusyOption,
    {"timeout", 0, "SECONDS", "End after this time, with exit status 8."},
    kHelpOption,
};

constexpr Variable kEnvironment[] = {
    {"KELVA_SERIAL", "The camera to use without --serial."},
    {"KELVA_VIRTUAL", "The virtual bus to look at without --virtual."},
    {"KELVA_TRACE", "The file for the trace without --trace."},
    {"NO_COLOR", "If set to anything, there are no colours."},
    {"TERM", "If it is \"dumb\", there are no colours and no progress bars."},
};

constexpr std::string_view kDescription =
    R"(kelva does everything that a Kelva camera can do. Each command opens the camera, does its work and closes
the camera again.

Results go to standard output, messages and progress to standard error. With --json the result is one JSON document;
commands that report events print one object a line. The form of the JSON is stable and carries the number of its
schema. The text form is for people and may change. Names and texts from a camera are shown with \xNN in place of
bytes that a terminal would obey.

Several commands may use one camera at once: a long one lets others have their turns between two files, and in the
middle of a large one. A command that finds the camera held waits, as --wait-busy says.

With one camera attached you need not choose. With several, choose one with --serial or KELVA_SERIAL; --serial - is the one
without a serial number. If no camera
with that number is attached, the command fails; it never takes another camera.)";

std::span<const Verb> AllVerbs() {
  static const std::vector<Verb> all = [] {
    std::vector<Verb> verbs;
    for (const auto& group :
         {ListVerbs(),   WatchVerbs(),   WaitVerbs(),    InfoVerbs(),    StateVerbs(),   CaptureVerbs(), ClockVerbs(),
          FolderVerbs(), PictureVerbs(), ThumbVerbs(),   SyncVerbs(),    GetVerbs(),     MountVerbs(),   ChangeVerbs(),
          KeyVerbs(),    WifiVerbs(),    ControlVerbs(), ConsoleVerbs(), MonitorVerbs(), BundleVerbs(),  UpgradeVerbs(),
          ReportVerbs(), SurveyVerbs(),  DoctorVerbs(),  HelpVerbs()}) {
      verbs.insert(verbs.end(), group.begin(), group.end());
    }
    return verbs;
  }();
  return all;
}

}  // namespace

const Program& Kelva() {
  static const Program program = {
      .name = "kelva",
      .version = KELVA_VERSION,
      .summary = "Everything that a Kelva camera can do, from the command line",
      .description = kDescription,
      .verbs = AllVerbs(),
      .options = kOptions,
      .environment = kEnvironment,
  };
  return program;
}

}  // namespace apps

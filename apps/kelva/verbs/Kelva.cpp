// The tool as the command line's machinery sees it: its options, its manual page's description and all its verbs.
#include <vector>

#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

constexpr Option kOptions[] = {
    {"serial", 's', "SERIAL", "The camera with this USB serial number; KELVA_SERIAL says it for all commands.",
     Offer::kSerial},
    {.name = "virtual",
     .letter = 0,
     .value = "SOCKET",
     .help = "Look for cameras on the virtual bus of `kelva-vcam serve`, not on this machine.",
     .offer = Offer::kFile,
     .alias = "socket"},
    kJsonOption,
    kQuietOption,
    {"timeout", 0, "SECONDS", "End after this time, with exit status 8."},
    kHelpOption,
};

constexpr Variable kEnvironment[] = {
    {"KELVA_SERIAL", "The camera to use when --serial is not given."},
    {"NO_COLOR", "Set to anything: no colours."},
    {"TERM", "With \"dumb\", no progress bars either."},
};

// One line is one paragraph.
constexpr std::string_view kDescription =
    R"(kelva does with a Kelva camera everything that the camera can do. Each command opens the camera, does its work and closes it again.

Results go to standard output, messages and progress to standard error. With --json the result is one JSON document (commands that report events give one object a line), whose form is stable and carries the number of its schema; the text form is for people and may change. Names and texts from a camera are shown with \xNN in place of bytes that a terminal would obey.

With one camera attached no choice is needed. With several, --serial or KELVA_SERIAL chooses; a number that is not attached is an error, and never another camera.)";

std::span<const Verb> AllVerbs() {
  static const std::vector<Verb> all = [] {
    std::vector<Verb> verbs;
    for (const auto& group :
         {ListVerbs(),    WatchVerbs(),   WaitVerbs(),   InfoVerbs(),    StateVerbs(),  ClockVerbs(),  FolderVerbs(),
          PictureVerbs(), SyncVerbs(),    GetVerbs(),    ChangeVerbs(),  KeyVerbs(),    WifiVerbs(),   ControlVerbs(),
          ConsoleVerbs(), MonitorVerbs(), BundleVerbs(), UpgradeVerbs(), ReportVerbs(), DoctorVerbs(), HelpVerbs()}) {
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

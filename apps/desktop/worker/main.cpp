// kelva-desktop-worker: the kinds of workers, and their options.
#include <vector>

#include "apps/camera/Attached.h"
#include "apps/camera/Turns.h"
#include "apps/commandline/Program.h"
#include "apps/desktop/worker/Browser.h"
#include "apps/desktop/worker/Input.h"
#include "apps/desktop/worker/Watch.h"
#include "apps/import/ImportRun.h"
#include "apps/tool/CameraSource.h"
#include "apps/tool/Tool.h"

namespace apps {
namespace {

ExitCode RunWatch(Context& context) {
  const auto input = Input::OfThisProcess();
  WatchCameras(context, [&] { return ObstaclesToCameras(context.call.Value("virtual")); });
  return ExitCode::kDone;
}

ExitCode RunCamera(Context& context) {
  const auto input = Input::OfThisProcess();
  Browser(context, *input).Run();
  return context.Result(Json::Object(), "");
}

ExitCode RunImportForWindow(Context& context) {
  const auto input = Input::OfThisProcess();
  return RunImport(context, context.call.words[0], SyncChoiceOf(context));
}

constexpr Option kOptions[] = {kSerialOption, kVirtualOption, kJsonOption, kWaitBusyOption, kHelpOption};
constexpr Argument kFolder[] = {{"FOLDER", "Where the pictures go; it is created if it does not exist."}};
constexpr Option kImportOptions[] = {
    kTypesOption,
    kPatternOption,
    kEverythingOption,
    {"pictures", 0, "FILE", "Only the pictures that this file names, one FOLDER/NAME a line."},
    {"delete-after-verify", 0, "",
     "Delete a file on the camera once it is here, and is as its key says or was read twice."},
};

constexpr Verb kVerbs[] = {
    {"watch", "Say which cameras come and go, and what is in the way", {}, {}, "", "", {}, RunWatch},
    {"camera", "Show one camera's pictures", {}, {}, "", "", {}, RunCamera, true},
    {"import", "Import pictures as `kelva sync` does", kFolder, kImportOptions, "", "", {}, RunImportForWindow, true},
};

}  // namespace
}  // namespace apps

int main(int argc, char** argv) {
  static const apps::Program program = {
      .name = "kelva-desktop-worker",
      .version = KELVA_VERSION,
      .summary = "Works with cameras for the window, which starts it",
      .description = "kelva-desktop starts this program. apps/desktop/worker/README.md says what they exchange.",
      .verbs = apps::kVerbs,
      .options = apps::kOptions,
      .plainErrors = true,
  };
  std::vector<const char*> arguments(argv, argv + argc);
  if (arguments.empty()) arguments.push_back("");
  arguments.front() = "--json";  // the window reads nothing else
  return apps::RunTool(program, arguments);
}
